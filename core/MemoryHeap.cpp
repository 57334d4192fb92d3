#include "core/MemoryHeap.h"

#include <cstdint>
#include <cstring>

#include "core/MemoryManager.h"
#include "kticore/core/Exception.h"

namespace kt {

namespace {

constexpr size_t kBlockHeaderSize = 8;
static_assert(sizeof(CHeap*) == kBlockHeaderSize, "a block header holds one CHeap*");

void* SystemBlockOf(void* block) { return static_cast<char*>(block) - kBlockHeaderSize; }

CHeap* OwnerOf(void* block) {
    CHeap* owner;
    std::memcpy(&owner, SystemBlockOf(block), sizeof owner);
    return owner;
}

}  // namespace

CHeap::CHeap(size_t size, int isStatic) : isStatic(isStatic) {
    sys::ScopedLock lock(memoryManager.memoryLock);
    for (DWORD attempt = 0;; ++attempt) {
        handle = sys::CreateSystemHeap();
        if (handle != nullptr || !memoryManager.RetryAfterLowMemory(attempt))
            break;
    }
    coreBytes.Add(size);
    coreOps.Add(1);
    if (handle == nullptr)
        throw CXMemException();
    memoryManager.heaps.AddTail(this);
}

CHeap::~CHeap() {
    sys::ScopedLock lock(memoryManager.memoryLock);
    memoryManager.heaps.Remove(this);
    sys::DestroySystemHeap(handle);
}

ULONG CHeap::AddRef() { return isStatic ? 1 : CKTUnknownImpl::AddRef(); }

ULONG CHeap::Release() { return isStatic ? 1 : CKTUnknownImpl::Release(); }

// The system heap serialises itself: only a failure takes the memory lock,
// under which the sink is asked.
void* CHeap::Alloc(size_t size) {
    const size_t total = kBlockHeaderSize + size;
    if (total < size)  // no system heap can serve what does not fit a size_t
        throw CXMemException();
    void* systemBlock = sys::AllocZeroed(handle, total);
    if (systemBlock == nullptr)
        systemBlock = AllocAfterLowMemory(total);
    CHeap* owner = this;
    std::memcpy(systemBlock, &owner, sizeof owner);
    coreBytes.Add(total);
    coreOps.Add(1);
    return static_cast<char*>(systemBlock) + kBlockHeaderSize;
}

__attribute__((noinline, cold)) void* CHeap::AllocAfterLowMemory(size_t total) {
    sys::ScopedLock lock(memoryManager.memoryLock);
    for (DWORD attempt = 0; memoryManager.RetryAfterLowMemory(attempt); ++attempt) {
        if (void* systemBlock = sys::AllocZeroed(handle, total))
            return systemBlock;
    }
    throw CXMemException();
}

// No lock: the system heap serialises itself.
void CHeap::Free(void* block) {
    CHeap* owner = OwnerOf(block);
    coreOps.Add(1);
    sys::FreeBlock(owner->handle, SystemBlockOf(block));
}

void* CHeap::Realloc(void* block, size_t newSize) {
    CHeap* owner = OwnerOf(block);
    sys::ScopedLock lock(memoryManager.memoryLock);
    void* moved = owner->Alloc(newSize);  // on failure the old block stays valid
    const size_t oldSize = sys::BlockSize(owner->handle, SystemBlockOf(block)) - kBlockHeaderSize;
    std::memcpy(moved, block, newSize < oldSize ? newSize : oldSize);
    coreOps.Add(1);
    sys::FreeBlock(owner->handle, SystemBlockOf(block));
    coreOps.Add(1);
    return moved;
}

// The size as a signed 32-bit number, as the interface reports sizes. The
// header comes off in 32 bits without a sign, so that the blocks just under
// 2 GiB wrap as the 32-bit arithmetic of the interface does.
size_t CHeap::GetBlockSize(void* block) {
    CHeap* owner = OwnerOf(block);
    const auto systemSize =
        static_cast<std::uint32_t>(sys::BlockSize(owner->handle, SystemBlockOf(block)));
    return static_cast<size_t>(
        static_cast<std::int32_t>(systemSize - static_cast<std::uint32_t>(kBlockHeaderSize)));
}

size_t CHeap::GetHeaderSize(size_t) { return kBlockHeaderSize; }

}  // namespace kt
