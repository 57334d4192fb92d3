#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include "kticore/core/Exception.h"
#include "kticore/core/Heap.h"

namespace {

// More than any system heap can give, small enough that the header fits.
constexpr size_t kImpossibleSize = size_t{1} << 52;

// The sink can be installed once per process, so all these tests share one
// whose answers each test scripts.
class ScriptedSink : public ILowMemoryNotifySink {
public:
    int OnLowMemory(DWORD attempt) override {
        attempts.push_back(attempt);
        if (answers.empty())
            return 0;
        const int answer = answers.front();
        answers.pop_front();
        return answer;
    }

    std::deque<int> answers;
    std::vector<DWORD> attempts;
};

// Whether another thread can take the memory lock within a few seconds.
bool MemoryLockIsFree() {
    auto taken = std::make_shared<std::promise<void>>();
    std::future<void> done = taken->get_future();
    std::thread([taken] {
        Mem_DefaultHeap(0);  // takes and leaves the lock
        taken->set_value();
    }).detach();
    return done.wait_for(std::chrono::seconds(10)) == std::future_status::ready;
}

// A sink can be installed but never taken away, so the case without one runs
// in a process of its own, started afresh, whatever ran before in this one.
TEST(LowMemoryWithoutSinkDeathTest, FailedAllocationThrowsAtOnceAndFreesTheLock) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            int code = -1;
            try {
                Mem_DefaultHeap(0)->Alloc(kImpossibleSize);
            } catch (CXMemException& failure) {
                code = failure.GetCode();
            }
            std::fprintf(stderr, "code %d, lock %s\n", code, MemoryLockIsFree() ? "free" : "held");
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "code 2, lock free");
}

class LowMemorySink : public ::testing::Test {
protected:
    static void SetUpTestSuite() { Mem_SetLowMemoryNotifySink(&sink); }
    void SetUp() override {
        sink.answers.clear();
        sink.attempts.clear();
    }
    static ScriptedSink sink;
};

ScriptedSink LowMemorySink::sink;

TEST_F(LowMemorySink, IsAskedAgainUntilItGivesUpThenTheAllocationThrows) {
    sink.answers = {1, 1, 0};
    IHeap* heap = new_MemoryHeap(0);
    try {
        heap->Alloc(kImpossibleSize);
        FAIL() << "the allocation succeeded";
    } catch (CXMemException& failure) {
        EXPECT_EQ(failure.GetCode(), XE_NO_MEMORY);
    }
    EXPECT_EQ(sink.attempts, (std::vector<DWORD>{0, 1, 2}));
    EXPECT_TRUE(MemoryLockIsFree());
    heap->Release();
}

TEST_F(LowMemorySink, FailedReallocLeavesTheOldBlockValid) {
    IHeap* heap = Mem_DefaultHeap(0);
    auto* block = static_cast<unsigned char*>(heap->Alloc(32));
    block[31] = 0x5A;
    EXPECT_THROW(heap->Realloc(block, kImpossibleSize), CXMemException);
    EXPECT_EQ(sink.attempts, (std::vector<DWORD>{0}));
    EXPECT_EQ(heap->GetBlockSize(block), 32u);
    EXPECT_EQ(block[31], 0x5A);
    heap->Free(block);
    EXPECT_TRUE(MemoryLockIsFree());
}

TEST_F(LowMemorySink, SecondInstallationIsRefusedAndTheFirstSinkStays) {
    ScriptedSink other;
    for (ILowMemoryNotifySink* candidate : {static_cast<ILowMemoryNotifySink*>(&other),
                                            static_cast<ILowMemoryNotifySink*>(nullptr)}) {
        try {
            Mem_SetLowMemoryNotifySink(candidate);
            FAIL() << "a second sink was accepted";
        } catch (CXException& refusal) {
            EXPECT_EQ(refusal.GetCode(), XE_BAD_ARGUMENT);
        }
    }
    EXPECT_THROW(Mem_DefaultHeap(0)->Alloc(kImpossibleSize), CXMemException);
    EXPECT_EQ(sink.attempts.size(), 1u);
    EXPECT_TRUE(other.attempts.empty());
}

}  // namespace
