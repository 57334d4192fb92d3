// What the library does to the process's Win32 heaps. (Wine 8 accepts the
// low-fragmentation setting but always reports mode 0, so what is checked is
// how many heaps took it.)
#include <windows.h>

#include <gtest/gtest.h>

#include <vector>

#include "kticore/core/Heap.h"
#include "platform/SystemHeap.h"

namespace {

size_t CountProcessHeaps() {
    std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr));
    return GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
}

TEST(ProcessHeaps, EachPrivateHeapIsASystemHeapUntilItsLastRelease) {
    const size_t before = CountProcessHeaps();
    IHeap* heap = new_MemoryHeap(0);
    heap->Alloc(1 << 20);
    EXPECT_EQ(CountProcessHeaps(), before + 1);
    heap->AddRef();
    heap->Release();
    EXPECT_EQ(CountProcessHeaps(), before + 1);
    heap->Release();
    EXPECT_EQ(CountProcessHeaps(), before);
}

TEST(ProcessHeaps, EveryHeapOfTheProcessTakesLowFragmentationAlsoBeyondTheFirst64) {
    constexpr unsigned kExtraHeaps = 70;  // more than one listing of 64 holds
    std::vector<HANDLE> extra;
    for (unsigned i = 0; i < kExtraHeaps; ++i)
        extra.push_back(HeapCreate(0, 0, 0));
    EXPECT_GE(kt::sys::EnableLowFragmentationForProcessHeaps(), kExtraHeaps);
    for (HANDLE heap : extra)
        HeapDestroy(heap);
}

}  // namespace
