// The POSIX implementation of the system heap. There is no private heap to ask
// the system for, so a heap is a lock and a chain of the malloc blocks it
// handed out: destroying the heap walks the chain and frees every block, which
// is what Win32's HeapDestroy promises.
#include "platform/SystemHeap.h"

#include <pthread.h>

#include <cstdint>
#include <cstdlib>
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

struct PosixHeap {
    pthread_mutex_t lock;
    BlockLink chain;  // sentinel: chain.next is the newest block
};

BlockLink* LinkOf(const void* block) {
    return const_cast<BlockLink*>(static_cast<const BlockLink*>(block) - 1);
}

}  // namespace

SystemHeap CreateSystemHeap() {
    auto* heap = static_cast<PosixHeap*>(std::malloc(sizeof(PosixHeap)));
    if (heap == nullptr)
        return nullptr;
    new (heap) PosixHeap;
    pthread_mutex_init(&heap->lock, nullptr);
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
    pthread_mutex_destroy(&heap->lock);
    std::free(heap);
}

void* AllocZeroed(SystemHeap handle, size_t size) {
    if (size > SIZE_MAX - sizeof(BlockLink))
        return nullptr;
    auto* link = static_cast<BlockLink*>(std::calloc(1, sizeof(BlockLink) + size));
    if (link == nullptr)
        return nullptr;
    auto* heap = static_cast<PosixHeap*>(handle);
    link->size = size;
    pthread_mutex_lock(&heap->lock);
    link->previous = &heap->chain;
    link->next = heap->chain.next;
    heap->chain.next->previous = link;
    heap->chain.next = link;
    pthread_mutex_unlock(&heap->lock);
    return link + 1;
}

void FreeBlock(SystemHeap handle, void* block) {
    auto* heap = static_cast<PosixHeap*>(handle);
    BlockLink* link = LinkOf(block);
    pthread_mutex_lock(&heap->lock);
    link->previous->next = link->next;
    link->next->previous = link->previous;
    pthread_mutex_unlock(&heap->lock);
    std::free(link);
}

size_t BlockSize(SystemHeap, const void* block) { return LinkOf(block)->size; }

// glibc's malloc has no low-fragmentation switch; its arenas already serve
// small blocks from size classes.
void EnableLowFragmentationForProcessHeaps() {}

}  // namespace kt::sys
