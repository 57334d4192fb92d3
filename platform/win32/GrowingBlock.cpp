// The Win32 implementation of growing blocks: small ones from the C heap,
// large ones in address space reserved for the largest block, committed as
// they grow.
#include "platform/GrowingBlock.h"

#include <windows.h>

#include <cstdlib>
#include <cstring>

namespace kt::sys {

namespace {

// From this size on a block has address space of its own.
constexpr size_t kReservedFrom = size_t{1} << 20;
// A block's size is a 32-bit number.
constexpr size_t kLargestBlock = size_t{1} << 32;

bool Commit(void* block, size_t size) {
    return ::VirtualAlloc(block, size, MEM_COMMIT, PAGE_READWRITE) != nullptr;
}

}  // namespace

void* GrowBlock(void* block, size_t oldSize, size_t newSize) {
    if (newSize < kReservedFrom)
        return std::realloc(block, newSize);
    if (oldSize >= kReservedFrom)
        return Commit(block, newSize) ? block : nullptr;
    void* reserved = ::VirtualAlloc(nullptr, kLargestBlock, MEM_RESERVE, PAGE_READWRITE);
    if (reserved == nullptr)
        return nullptr;
    if (!Commit(reserved, newSize)) {
        ::VirtualFree(reserved, 0, MEM_RELEASE);
        return nullptr;
    }
    if (oldSize != 0)
        std::memcpy(reserved, block, oldSize);
    std::free(block);
    return reserved;
}

void FreeGrownBlock(void* block, size_t size) {
    if (size >= kReservedFrom)
        ::VirtualFree(block, 0, MEM_RELEASE);
    else
        std::free(block);
}

}  // namespace kt::sys
