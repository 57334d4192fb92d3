// Critical sections behind one shared mutex, Wait_All, events, and the thread
// start with its handshake: within a process and across two.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <future>
#include <numeric>
#include <string>
#include <thread>
#include <vector>

#if !defined(_WIN32)
#    include <fcntl.h>
#    include <semaphore.h>
#    include <sys/mman.h>
#    include <unistd.h>

#    include <cstdlib>

#    include "platform/posix/SyncNames.h"
#endif

#include "kticore/core/Exception.h"
#include "kticore/core/Threads.h"
#include "platform/Thread.h"
#include "tests/support/LockedCount.h"
#include "tests/support/ScratchDirectory.h"
#include "tests/support/TestHelper.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

// A thread that takes something, holds it until the object goes, and gives it
// back from the same thread, as locks require.
class HoldingThread {
public:
    HoldingThread(std::function<void()> take, std::function<void()> give)
        : thread([this, take, give, letGo = letGo.get_future()] {
              take();
              held.set_value();
              letGo.wait();
              give();
          }) {
        held.get_future().wait();
    }
    ~HoldingThread() {
        letGo.set_value();
        thread.join();
    }

private:
    std::promise<void> held, letGo;
    std::thread thread;  // last: it uses the fields above
};

// Wait_All(0) from this thread, giving back at once what it took.
int TryAll() {
    const int result = Wait_All(0);
    if (result != KTWAIT_TIMEOUT)
        Wait_Release();
    return result;
}

// Whether the helper made the file `marker` within half a minute.
bool Appears(const std::string& marker) {
    for (int poll = 0; poll < 3000 && !std::filesystem::exists(marker); ++poll)
        std::this_thread::sleep_for(10ms);
    return std::filesystem::exists(marker);
}

TEST(CriticalSections, OneThreadInsideAnyOfThemAtATime) {
    const struct {
        const char* what;
        void (*take)(ICritSect* section);
        void (*give)(ICritSect* section);
        bool holds;
    } kHoldings[] = {
        {"a section", [](ICritSect* a) { a->Enter(); }, [](ICritSect* a) { a->Leave(); }, true},
        {"a section entered twice, left once",
         [](ICritSect* a) { a->Enter(), a->Enter(), a->Leave(); }, [](ICritSect* a) { a->Leave(); },
         true},
        {"a section entered and left twice",
         [](ICritSect* a) { a->Enter(), a->Enter(), a->Leave(), a->Leave(); }, [](ICritSect*) {},
         false},
        {"all sections", [](ICritSect*) { Wait_All(-1); }, [](ICritSect*) { Wait_Release(); },
         true},
    };
    ICritSect* a = CriticalSection_New();
    ICritSect* b = CriticalSection_New();
    for (const auto& holding : kHoldings) {
        SCOPED_TRACE(holding.what);
        std::atomic<bool> insideB{false};
        std::thread entersB;
        {
            HoldingThread holder([&] { holding.take(a); }, [&] { holding.give(a); });
            EXPECT_EQ(TryAll(), holding.holds ? KTWAIT_TIMEOUT : KTWAIT_SIGNALLED);
            entersB = std::thread([&] { b->Enter(), insideB = true, b->Leave(); });
            if (holding.holds) {
                std::this_thread::sleep_for(200ms);
                EXPECT_FALSE(insideB.load());
            }
        }
        entersB.join();
        EXPECT_TRUE(insideB.load());
    }
    b->Release();
    a->Release();
}

TEST(CriticalSections, CountedObjectsThatAnswerForNoInterface) {
    for (IKTUnknown* object : {static_cast<IKTUnknown*>(CriticalSection_New()),
                               static_cast<IKTUnknown*>(Event_New(0))}) {
        int untouched = 0;
        void* out = &untouched;
        for (const type_info* type : {&typeid(IKTUnknown), &typeid(ICritSect), &typeid(IEvent)})
            EXPECT_EQ(object->QueryInterface(*type, &out), 0);
        EXPECT_EQ(out, &untouched);
        EXPECT_EQ(object->AddRef(), 2u);
        EXPECT_EQ(object->Release(), 1u);
        EXPECT_EQ(object->Release(), 0u);
    }
}

TEST(CriticalSections, BuiltInTheCallersMemory) {
    int size = 0;
    EXPECT_EQ(_CriticalSection_New_For_Core(nullptr, &size), nullptr);
    ASSERT_GT(size, 0);
    {
        // The size query made no section, so there is no mutex to take.
        HoldingThread holdsAll([] { Wait_All(-1); }, [] { Wait_Release(); });
        EXPECT_EQ(TryAll(), KTWAIT_SIGNALLED);
    }

    alignas(16) unsigned char memory[264];
    ASSERT_LE(size, static_cast<int>(sizeof memory) - 8);
    ICritSect* placed = _CriticalSection_New_For_Core(memory + 8, &size);  // 8-byte aligned suffices
    EXPECT_EQ(static_cast<void*>(placed), static_cast<void*>(memory + 8));
    {
        HoldingThread holder([placed] { placed->Enter(); }, [placed] { placed->Leave(); });
        EXPECT_EQ(TryAll(), KTWAIT_TIMEOUT);
    }
    EXPECT_EQ(placed->Release(), 0u);  // destroyed where it stands, not freed

    for (void* bad : {static_cast<void*>(nullptr), static_cast<void*>(memory + 1)}) {
        try {
            _CriticalSection_New_For_Core(bad, bad == nullptr ? nullptr : &size);
            ADD_FAILURE() << "no exception";
        } catch (const CXException& failure) {
            EXPECT_EQ(failure.code, XE_BAD_ARGUMENT);
        }
    }
}

TEST(CriticalSections, EnterGoesOnPastAMutexThatAThreadAbandoned) {
    ICritSect* section = CriticalSection_New();
    std::thread([] { Wait_All(-1); }).join();
    section->Enter();
    section->Leave();
    EXPECT_EQ(TryAll(), KTWAIT_SIGNALLED);
    section->Release();
}

TEST(CriticalSections, OneMutexForAllProcesses) {
    kt::test::ScratchDirectory scratch;
    const std::string marker = kt::test::Narrow(scratch / KTW("held"));
    kt::test::ChildProcess holder(KT_TEST_HELPER, {"hold-all", marker});
    ASSERT_TRUE(Appears(marker));

    EXPECT_EQ(TryAll(), KTWAIT_SIGNALLED);  // no section here: no mutex, nothing to take
    ICritSect* section = CriticalSection_New();
    EXPECT_EQ(TryAll(), KTWAIT_TIMEOUT);
    section->Release();
    EXPECT_EQ(TryAll(), KTWAIT_SIGNALLED);  // the last section closed it

    section = CriticalSection_New();
    holder.Kill();
    EXPECT_EQ(Wait_All(10000), KTWAIT_ABANDONED);
    Wait_Release();
    section->Release();
}

#if !defined(_WIN32)
// Children started meanwhile share a lock of their own, made afresh.
class PrivateSyncNamespace {
public:
    PrivateSyncNamespace() : saved(std::getenv(kVariable) ? std::getenv(kVariable) : "") {
        const std::string space = saved + "-private" + std::to_string(getpid());
        setenv(kVariable, space.c_str(), 1);
        lockName = kt::sys::SyncNameIn(space, "KT_Fix_Fucking_NT_Bugs_Mutex");
        shm_unlink(lockName.c_str());
    }
    ~PrivateSyncNamespace() {
        shm_unlink(lockName.c_str());
        setenv(kVariable, saved.c_str(), 1);
    }
    static constexpr char kVariable[] = "KTCORE_SYNC_NAMESPACE";
    const std::string saved;
    std::string lockName;
};

// A maker that died between creating the lock's block and setting it up
// leaves it short, or sized but unmarked: the next process sets it up.
TEST(CriticalSections, AHalfMadeSharedLockIsMadeAgain) {
    for (const off_t size : {off_t{0}, off_t{4096}}) {
        SCOPED_TRACE(size);
        PrivateSyncNamespace space;
        const int block = shm_open(space.lockName.c_str(), O_RDWR | O_CREAT, S_IRUSR | S_IWUSR);
        ASSERT_GE(block, 0);
        ASSERT_EQ(ftruncate(block, size), 0);
        close(block);
        kt::test::ScratchDirectory scratch;
        const std::string marker = kt::test::Narrow(scratch / KTW("held"));
        kt::test::ChildProcess holder(KT_TEST_HELPER, {"hold-all", marker});
        Appears(marker);
        holder.Kill();
        // Only a lock that was set up, robust, tells of its killed holder.
        kt::test::ChildProcess waiter(KT_TEST_HELPER, {"wait-all", "5000"});
        EXPECT_EQ(waiter.Wait(), KTWAIT_ABANDONED);
    }
}
#endif

// The lock outlives the last section of its holder's process, so that the
// holder's end still marks it abandoned.
TEST(CriticalSections, AHolderThatEndsAfterItsLastSectionLeavesTheLockAbandoned) {
#if !defined(_WIN32)
    PrivateSyncNamespace space;
#endif
    ICritSect* keeper = CriticalSection_New();  // a Win32 mutex lives while a handle does
    kt::test::ChildProcess holder(KT_TEST_HELPER, {"end-holding-all", "-"});
    EXPECT_EQ(holder.Wait(), 0);
    kt::test::ChildProcess waiter(KT_TEST_HELPER, {"wait-all", "5000"});
    EXPECT_EQ(waiter.Wait(), KTWAIT_ABANDONED);
    keeper->Release();
}

TEST(CriticalSections, TheMutexIsTakenBeforeTheSection) {
    kt::test::ScratchDirectory scratch;
    const std::string marker = kt::test::Narrow(scratch / KTW("entered"));
    kt::test::ChildProcess helper(KT_TEST_HELPER, {"enter-holding-all", marker});
    EXPECT_TRUE(Appears(marker)) << "deadlocked";
}

#if defined(_WIN32)
// An event that holds the mutex's name makes CreateMutexA fail.
TEST(CriticalSections, WithoutTheMutexEachSectionLocksAlone) {
    const HANDLE squatter = CreateEventA(nullptr, TRUE, FALSE, "KT_Fix_Fucking_NT_Bugs_Mutex");
    if (squatter == nullptr || GetLastError() == ERROR_ALREADY_EXISTS)
        GTEST_SKIP() << "the mutex is alive in another process";
    ICritSect* a = CriticalSection_New();
    ICritSect* b = CriticalSection_New();
    {
        HoldingThread holder([a] { a->Enter(); }, [a] { a->Leave(); });
        EXPECT_EQ(TryAll(), KTWAIT_SIGNALLED);
        std::thread([b] { b->Enter(), b->Leave(); }).join();
    }
    b->Release();
    a->Release();
    CloseHandle(squatter);
}
#endif

// Eight threads step a count, each inside a section (two threads to each),
// while one more steps it holding all of them through Wait_All. Each step
// reads the count, yields and writes it plus one: overlapping steps lose counts.
TEST(CriticalSections, ExcludeEachOtherUnderLoad) {
    constexpr int kThreads = 8;
    constexpr int kSections = 4;
    std::vector<ICritSect*> sections;
    for (int i = 0; i < kSections; ++i)
        sections.push_back(CriticalSection_New());
    kt::test::CountInMemory count;
    const auto step = [&count] { kt::test::StepUnder(count); };
    std::vector<long> steps(kThreads + 1);
    std::atomic<int> refusals{0};
    const auto end = Clock::now() + 10s;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            for (long& taken = steps[t]; Clock::now() < end; ++taken) {
                sections[t % kSections]->Enter();
                step();
                sections[t % kSections]->Leave();
            }
        });
    }
    threads.emplace_back([&] {
        for (long& taken = steps[kThreads]; Clock::now() < end; ++taken) {
            refusals += Wait_All(-1) != KTWAIT_SIGNALLED;
            step();
            Wait_Release();
            std::this_thread::yield();
        }
    });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(count.Read(), std::accumulate(steps.begin(), steps.end(), 0L));
    EXPECT_GT(steps[kThreads], 0);
    EXPECT_EQ(refusals.load(), 0);
    for (ICritSect* section : sections)
        section->Release();
}

// The helper process and two threads here step one count in a file.
TEST(CriticalSections, ExcludeEachOtherAcrossProcesses) {
    kt::test::ScratchDirectory scratch;
    kt::test::CountInFile count{kt::test::Narrow(scratch / KTW("count"))};
    ICritSect* section = CriticalSection_New();
    kt::test::ChildProcess helper(KT_TEST_HELPER, {"count-in-section", count.name, "4000"});
    ASSERT_TRUE(helper.Started());
    for (int poll = 0; poll < 3000 && !std::filesystem::exists(count.name); ++poll)
        std::this_thread::sleep_for(10ms);
    std::atomic<long> ours{0};
    std::thread threads[2];
    for (std::thread& thread : threads)
        thread = std::thread([&] { ours += kt::test::CountInSection(section, count, 2000ms); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(helper.Wait(), 0);
    long theirs = 0;
    std::ifstream(count.name + ".helper") >> theirs;
    EXPECT_GT(theirs, 0);
    EXPECT_EQ(count.Read(), ours + theirs);
    section->Release();
}


TEST(Events, ClearThemselvesWhenAWaitHasSeenThem) {
    // S sets, R resets, a digit is the result Wait(0) must give.
    const struct {
        int initialState;
        const char* steps;
    } kCases[] = {{0, "2"}, {1, "12"}, {0, "S12"}, {0, "SS12"}, {0, "SR2"}, {1, "R2"}, {1, "1S12"}};
    for (const auto& events : kCases) {
        SCOPED_TRACE(events.steps);
        IEvent* event = Event_New(events.initialState);
        for (const char* step = events.steps; *step != 0; ++step) {
            if (*step == 'S')
                event->Set();
            else if (*step == 'R')
                event->Reset();
            else
                EXPECT_EQ(event->Wait(0), *step - '0') << "at step " << step - events.steps;
        }
        event->Release();
    }
}

TEST(Events, WaitUntilSetOrTimedOut) {
    IEvent* event = Event_New(0);
    const auto start = Clock::now();
    EXPECT_EQ(event->Wait(100), KTWAIT_TIMEOUT);
    EXPECT_GE(Clock::now() - start, 80ms);
    for (DWORD timeout : {DWORD{60000}, KTWAIT_INFINITE}) {
        std::thread setter([event] { std::this_thread::sleep_for(100ms), event->Set(); });
        EXPECT_EQ(event->Wait(timeout), KTWAIT_SIGNALLED);
        setter.join();
    }
    EXPECT_EQ(event->Wait(0), KTWAIT_TIMEOUT);
    event->Release();
}

// The started thread's side of the handshake, by the host's own calls.
bool RaiseTheStartSignal(const char* name) {
#if defined(_WIN32)
    const HANDLE event = OpenEventA(EVENT_MODIFY_STATE, FALSE, name);
    const bool raised = event != nullptr && SetEvent(event) != FALSE;
    if (event != nullptr)
        CloseHandle(event);
#else
    sem_t* semaphore = sem_open(name, 0);
    const bool raised = semaphore != SEM_FAILED && sem_post(semaphore) == 0;
    if (semaphore != SEM_FAILED)
        sem_close(semaphore);
#endif
    return raised;
}

const std::string kLongName(250, 'n');

struct Answer {
    const char* name;
    std::chrono::milliseconds delay;
    bool answers;
    char ownName[256] = {};
    std::atomic<bool> answered{false};
    bool raised = false;
};

TEST(ThreadStart, WaitsUpToASecondForTheThreadToAnswer) {
    const struct {
        const char* what;
        const char* name;
        std::chrono::milliseconds delay;
        bool answers;
        bool creatorSeesIt;
    } kCases[] = {
        {"answers at once", "kt-start-test", 0ms, true, true},
        {"a 250-character name, answers late within the second", kLongName.c_str(), 400ms, true,
         true},
        {"answers after the second", "kt-start-test", 1500ms, true, false},
        {"never answers", "kt-start-test", 0ms, false, false},
    };
    for (const auto& start : kCases) {
        SCOPED_TRACE(start.what);
        Answer answer{start.name, start.delay, start.answers};
        unsigned long id = 0;
        const auto before = Clock::now();
        const auto answerTheStart = [](void* argument) -> unsigned {
            auto* own = static_cast<Answer*>(argument);
            KTCreateObjName(own->name, own->ownName, 0);
            if (own->answers) {
                std::this_thread::sleep_for(own->delay);
                own->answered = true;
                own->raised = RaiseTheStartSignal(own->ownName);
            }
            return 0;
        };
        void* thread = KTCreateThread(start.name, answerTheStart, &answer, &id);
        const auto waited = Clock::now() - before;
        const bool seen = answer.answered;
        ASSERT_NE(thread, nullptr);
        kt::sys::JoinThread(thread);
        EXPECT_EQ(seen, start.creatorSeesIt);
        EXPECT_EQ(answer.raised, start.creatorSeesIt);  // later, nobody waits for it any more
        if (!start.creatorSeesIt) {
            EXPECT_GE(waited, 950ms);
            EXPECT_LT(waited, 5s);
        }
        char expected[256];
        KTCreateObjName(start.name, expected, id);
        EXPECT_STREQ(answer.ownName, expected);  // the id is the thread's own
    }
}

TEST(ThreadStart, ObjectNamesTellTheirInputsApart) {
    const auto name = [](const char* given, unsigned long thread) {
        char made[256];
        KTCreateObjName(given, made, thread);
        return std::string(made);
    };
    EXPECT_EQ(name("name", 42), name("name", 42));
    EXPECT_NE(name("name", 42), name("other", 42));
    EXPECT_NE(name("name", 42), name("name", 43));
    EXPECT_NE(name(kLongName.c_str(), 42), name(kLongName.c_str(), 43));
    EXPECT_EQ(name(nullptr, 42), name("", 42));
}

}  // namespace
