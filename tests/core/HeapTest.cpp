#include "kticore/core/Heap.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "kticore/core/Exception.h"

namespace {

struct Activity {
    unsigned long long bytes = 0;
    unsigned int ops = 0;

    static Activity Now() {
        Activity now;
        Get_CoreActivity(&now.bytes, &now.ops);
        return now;
    }
};

// The heap that made a block, as its 8-byte header records it.
IHeap* OwnerRecordedIn(void* block) {
    IHeap* owner;
    std::memcpy(&owner, static_cast<char*>(block) - 8, sizeof owner);
    return owner;
}

bool AllBytesAre(const void* block, size_t size, unsigned char value) {
    const auto* bytes = static_cast<const unsigned char*>(block);
    for (size_t i = 0; i < size; ++i)
        if (bytes[i] != value)
            return false;
    return true;
}

class PrivateHeap : public ::testing::Test {
protected:
    void SetUp() override { heap = new_MemoryHeap(0); }
    void TearDown() override {
        if (heap != nullptr)
            heap->Release();
    }
    IHeap* heap = nullptr;
};

TEST_F(PrivateHeap, BlocksKnowTheirSizeAndOwner) {
    for (size_t size : {0u, 1u, 7u, 16u, 100u, 4096u, 1u << 20}) {
        void* block = heap->Alloc(size);
        ASSERT_NE(block, nullptr);
        EXPECT_EQ(heap->GetBlockSize(block), size);
        EXPECT_EQ(heap->GetHeaderSize(size), 8u);
        EXPECT_EQ(OwnerRecordedIn(block), heap);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 8, 0u);
        heap->Free(block);
    }
}

TEST_F(PrivateHeap, BlocksAreZeroFilledAlsoWhenMemoryIsReused) {
    for (int round = 0; round < 3; ++round) {
        auto* block = static_cast<unsigned char*>(heap->Alloc(256));
        EXPECT_TRUE(AllBytesAre(block, 256, 0)) << "round " << round;
        std::memset(block, 0xFF, 256);
        heap->Free(block);
    }
}

TEST_F(PrivateHeap, AllocRefusesSizesThatOverflowWithTheHeader) {
    EXPECT_THROW(heap->Alloc(SIZE_MAX - 3), CXMemException);
}

TEST_F(PrivateHeap, ReallocToALargerSizeMovesKeepsAllBytesAndZeroesTheRest) {
    void* block = heap->Alloc(64);
    std::memset(block, 0xAB, 64);
    void* grown = heap->Realloc(block, 200);
    EXPECT_NE(grown, block);
    EXPECT_EQ(heap->GetBlockSize(grown), 200u);
    EXPECT_TRUE(AllBytesAre(grown, 64, 0xAB));
    EXPECT_TRUE(AllBytesAre(static_cast<char*>(grown) + 64, 136, 0));
    heap->Free(grown);
}

TEST_F(PrivateHeap, ReallocToASmallerSizeStillMovesAndKeepsThePrefix) {
    auto* block = static_cast<unsigned char*>(heap->Alloc(64));
    for (int i = 0; i < 64; ++i)
        block[i] = static_cast<unsigned char>(i);
    auto* shrunk = static_cast<unsigned char*>(heap->Realloc(block, 16));
    EXPECT_NE(shrunk, block);
    EXPECT_EQ(heap->GetBlockSize(shrunk), 16u);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(shrunk[i], i);
    heap->Free(shrunk);
}

TEST_F(PrivateHeap, ReallocAndFreeGoToTheOwnerWhicheverHeapIsAsked) {
    IHeap* other = Mem_DefaultHeap(0);
    void* block = heap->Alloc(32);
    void* moved = other->Realloc(block, 48);
    EXPECT_EQ(OwnerRecordedIn(moved), heap);
    other->Free(moved);
    // Had the block been left in (or freed from) the wrong heap, releasing
    // the owner would now touch freed memory.
    heap->Release();
    heap = nullptr;
}

TEST_F(PrivateHeap, LastReleaseDestroysTheHeapWithItsBlocks) {
    EXPECT_EQ(heap->AddRef(), 2u);
    EXPECT_EQ(heap->Release(), 1u);
    for (int i = 0; i < 1000; ++i)
        heap->Alloc(static_cast<size_t>(i) * 13);  // never freed one by one
    EXPECT_EQ(heap->Release(), 0u);
    heap = nullptr;
}

TEST_F(PrivateHeap, AnswersQueryInterfaceForTheHostsTypeId) {
    // The host's typeid(IHeap) must equal the one the library compares with.
    void* out = nullptr;
    ASSERT_EQ(heap->QueryInterface(typeid(IHeap), &out), 1);
    EXPECT_EQ(out, heap);
    EXPECT_EQ(heap->Release(), 1u);
    EXPECT_EQ(heap->QueryInterface(typeid(IKTUnknown), nullptr), 1);
}

TEST(DefaultHeap, IsOneObjectThatCountingCannotDestroy) {
    IHeap* heap = Mem_DefaultHeap(0);
    ASSERT_NE(heap, nullptr);
    EXPECT_EQ(Mem_DefaultHeap(12345), heap);
    for (int i = 0; i < 1000; ++i) {
        EXPECT_EQ(heap->Release(), 1u);
        EXPECT_EQ(heap->AddRef(), 1u);
    }
    void* block = heap->Alloc(100);
    EXPECT_EQ(heap->GetBlockSize(block), 100u);
    heap->Free(block);
}

TEST(CoreActivity, AllocCountsItsHeaderAndOneOperation) {
    IHeap* heap = Mem_DefaultHeap(0);
    const Activity before = Activity::Now();
    void* block = heap->Alloc(100);
    const Activity afterAlloc = Activity::Now();
    EXPECT_EQ(afterAlloc.bytes - before.bytes, 108u);
    EXPECT_EQ(afterAlloc.ops - before.ops, 1u);

    heap->Free(block);
    const Activity afterFree = Activity::Now();
    EXPECT_EQ(afterFree.bytes, afterAlloc.bytes);
    EXPECT_EQ(afterFree.ops - afterAlloc.ops, 1u);
}

TEST(CoreActivity, ReallocCountsItsAllocAndTwoOperations) {
    IHeap* heap = Mem_DefaultHeap(0);
    void* block = heap->Alloc(10);
    const Activity before = Activity::Now();
    block = heap->Realloc(block, 50);
    const Activity after = Activity::Now();
    EXPECT_EQ(after.bytes - before.bytes, 58u);
    EXPECT_EQ(after.ops - before.ops, 3u);
    heap->Free(block);
}

// Free takes no lock of the library: the system heap has to serialise the
// frees of one thread against the allocations of another.
TEST(HeapThreads, BlocksMadeAndFreedOnManyThreadsAcrossHeaps) {
    IHeap* shared = new_MemoryHeap(0);
    IHeap* fallback = Mem_DefaultHeap(0);
    std::vector<std::thread> workers;
    for (int t = 0; t < 4; ++t) {
        workers.emplace_back([shared, fallback, t] {
            std::vector<void*> blocks;
            for (int i = 0; i < 20000; ++i) {
                blocks.push_back(shared->Alloc(static_cast<size_t>(16 + (i % 7) * 24)));
                if (blocks.size() == 64) {
                    for (void* block : blocks)
                        ((i + t) % 2 ? shared : fallback)->Free(block);
                    blocks.clear();
                }
            }
            for (void* block : blocks)
                shared->Free(block);
        });
    }
    for (std::thread& worker : workers)
        worker.join();
    void* block = shared->Alloc(10);
    EXPECT_EQ(shared->GetBlockSize(block), 10u);
    EXPECT_EQ(shared->Release(), 0u);
}

}  // namespace
