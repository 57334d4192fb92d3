// Alloc + Free of one block through IHeap, against the Win32 heap functions in
// the same run. The peer with the same contract is a private heap asked for
// zero-filled blocks; the process heap without zeroing is the plain one.
#include <windows.h>

#include <cstdio>
#include <initializer_list>

#include "bench/harness/TimingHarness.h"
#include "kticore/core/Heap.h"

namespace {

constexpr long kIterations = 2000000;

template <class Allocate, class Release>
double AllocFree(Allocate allocate, Release release) {
    return kt::bench::NanosecondsPerCall(
        [&] {
            void* volatile block = allocate();
            release(block);
        },
        kIterations);
}

}  // namespace

int main() {
    IHeap* heap = new_MemoryHeap(0);
    HANDLE privateHeap = HeapCreate(HEAP_GROWABLE, 0, 0);
    HANDLE processHeap = GetProcessHeap();

    kt::bench::PrintRatioHeader();
    for (size_t size : {16u, 256u, 4096u}) {
        char name[32];
        std::snprintf(name, sizeof name, "AllocFree/%zu", size);
        const double ours =
            AllocFree([&] { return heap->Alloc(size); }, [&](void* block) { heap->Free(block); });
        const double zeroing =
            AllocFree([&] { return HeapAlloc(privateHeap, HEAP_ZERO_MEMORY, size + 8); },
                      [&](void* block) { HeapFree(privateHeap, 0, block); });
        const double plain = AllocFree([&] { return HeapAlloc(processHeap, 0, size); },
                                       [&](void* block) { HeapFree(processHeap, 0, block); });
        kt::bench::PrintRatio(name, "HeapAlloc-zeroed", ours, zeroing);
        kt::bench::PrintRatio(name, "HeapAlloc", ours, plain);
    }

    HeapDestroy(privateHeap);
    heap->Release();
    return 0;
}
