// The Win32 implementation of the system heap: the process's private heaps.
#include "platform/SystemHeap.h"

#include <windows.h>

namespace kt::sys {

namespace {

// HeapCompatibilityInformation value that selects the low-fragmentation heap.
void EnableLowFragmentation(HANDLE heap) {
    ULONG lowFragmentationHeap = 2;
    HeapSetInformation(heap, HeapCompatibilityInformation, &lowFragmentationHeap,
                       sizeof lowFragmentationHeap);
}

}  // namespace

SystemHeap CreateSystemHeap() {
    HANDLE heap = HeapCreate(HEAP_GROWABLE, 0, 0);
    if (heap != nullptr)
        EnableLowFragmentation(heap);
    return heap;
}

void DestroySystemHeap(SystemHeap heap) { HeapDestroy(heap); }

void* AllocZeroed(SystemHeap heap, size_t size) { return HeapAlloc(heap, HEAP_ZERO_MEMORY, size); }

void FreeBlock(SystemHeap heap, void* block) { HeapFree(heap, 0, block); }

size_t BlockSize(SystemHeap heap, const void* block) { return HeapSize(heap, 0, block); }

void EnableLowFragmentationForProcessHeaps() {
    // A process has a handful of heaps; ask again if more appeared meanwhile.
    HANDLE heaps[64];
    DWORD count = GetProcessHeaps(64, heaps);
    if (count > 64)
        count = 64;
    for (DWORD i = 0; i < count; ++i)
        EnableLowFragmentation(heaps[i]);
}

}  // namespace kt::sys
