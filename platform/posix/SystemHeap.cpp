// The POSIX implementation of the system heap. There is no private heap to ask
// the system for, so a heap is a lock and a chain of the malloc blocks it
// handed out: destroying the heap walks the chain and frees every block, which
// is what Win32's HeapDestroy promises.
#include "platform/SystemHeap.h"

#include <sched.h>
#include <sys/single_threaded.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

namespace kt::sys {

namespace {

// Lies in front of every block. Its 32 bytes keep the caller's part aligned as
// malloc aligns, like the blocks of a Win32 heap.
struct alignas(16) BlockLink {
    BlockLink* previous;
    BlockLink* next;
    size_t size;
};

// Guards a few pointer moves, so a spin that yields beats a mutex.
class ChainLock {
public:
    void Lock() {
        while (locked.exchange(true, std::memory_order_acquire))
            while (locked.load(std::memory_order_relaxed))
                sched_yield();
    }
    void Unlock() { locked.store(false, std::memory_order_release); }

private:
    std::atomic<bool> locked{false};
};

// Holds a chain's lock for a scope, unless the process has one thread: then
// nothing can meet the chain midway, as glibc's malloc takes no lock of its
// own then either. Another thread can only be made by this one, after the
// scope. Whether it locked is kept, since a process may go back to one thread.
class ChainGuard {
public:
    explicit ChainGuard(ChainLock& lock) : lock(__libc_single_threaded ? nullptr : &lock) {
        if (this->lock != nullptr)
            this->lock->Lock();
    }
    ~ChainGuard() {
        if (lock != nullptr)
            lock->Unlock();
    }
    ChainGuard(const ChainGuard&) = delete;
    ChainGuard& operator=(const ChainGuard&) = delete;

private:
    ChainLock* lock;
};

struct PosixHeap {
    ChainLock lock;
    BlockLink chain;  // sentinel: chain.next is the newest block
};

BlockLink* LinkOf(const void* block) {
    return const_cast<BlockLink*>(static_cast<const BlockLink*>(block) - 1);
}

}  // namespace

SystemHeap CreateSystemHeap() {
    auto* heap = new (std::nothrow) PosixHeap;
    if (heap != nullptr)
        heap->chain.previous = heap->chain.next = &heap->chain;
    return heap;
}

void DestroySystemHeap(SystemHeap handle) {
    auto* heap = static_cast<PosixHeap*>(handle);
    for (BlockLink* link = heap->chain.next; link != &heap->chain;) {
        BlockLink* next = link->next;
        std::free(link);
        link = next;
    }
    delete heap;
}

void* AllocZeroed(SystemHeap handle, size_t size) {
    if (size > SIZE_MAX - sizeof(BlockLink))
        return nullptr;
    // malloc and a clear beat calloc, which glibc keeps out of its fast
    // per-thread cache.
    auto* link = static_cast<BlockLink*>(std::malloc(sizeof(BlockLink) + size));
    if (link == nullptr)
        return nullptr;
    std::memset(link + 1, 0, size);
    auto* heap = static_cast<PosixHeap*>(handle);
    link->size = size;
    {
        ChainGuard guard(heap->lock);
        link->previous = &heap->chain;
        link->next = heap->chain.next;
        heap->chain.next->previous = link;
        heap->chain.next = link;
    }
    return link + 1;
}

void FreeBlock(SystemHeap handle, void* block) {
    auto* heap = static_cast<PosixHeap*>(handle);
    BlockLink* link = LinkOf(block);
    {
        ChainGuard guard(heap->lock);
        link->previous->next = link->next;
        link->next->previous = link->previous;
    }
    std::free(link);
}

size_t BlockSize(SystemHeap, const void* block) { return LinkOf(block)->size; }

// glibc's malloc has no low-fragmentation switch; its arenas already serve
// small blocks from size classes.
unsigned EnableLowFragmentationForProcessHeaps() { return 0; }

}  // namespace kt::sys
