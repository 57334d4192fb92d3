// What the library does to the process's Win32 heaps. (Wine 8 accepts the
// low-fragmentation setting but always reports mode 0, so it is not checked.)
#include <windows.h>

#include <gtest/gtest.h>

#include <vector>

#include "kticore/core/Heap.h"

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

}  // namespace
