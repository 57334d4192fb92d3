// The Win32 implementation of the system heap: the process's private heaps.
#include "platform/SystemHeap.h"

#include <windows.h>

#include <vector>

namespace kt::sys {

namespace {

// HeapCompatibilityInformation value that selects the low-fragmentation heap.
constexpr ULONG kLowFragmentationHeap = 2;

bool EnableLowFragmentation(HANDLE heap) {
    ULONG mode = kLowFragmentationHeap;
    return HeapSetInformation(heap, HeapCompatibilityInformation, &mode, sizeof mode) != FALSE;
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

unsigned EnableLowFragmentationForProcessHeaps() {
    // A listing too small for all heaps answers how many there are; heaps may
    // appear meanwhile, so ask until one listing holds them all.
    std::vector<HANDLE> heaps(64);
    DWORD count;
    while ((count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data())) > heaps.size())
        heaps.resize(count);
    unsigned enabled = 0;
    for (DWORD i = 0; i < count; ++i)
        enabled += EnableLowFragmentation(heaps[i]) ? 1 : 0;
    return enabled;
}

}  // namespace kt::sys
