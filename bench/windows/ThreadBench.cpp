// Enter + Leave of an uncontended critical section, against a raw
// CRITICAL_SECTION in the same run. A section of the library first takes the
// process-wide named mutex, which lives in the kernel (under Wine, in the
// wine server): the raw named mutex alone and the same two locks taken by
// hand show what the figure is made of.
#include <windows.h>

#include "bench/harness/TimingHarness.h"
#include "kticore/core/Threads.h"

namespace {

// A critical section of the platform costs nanoseconds, a kernel mutex
// microseconds: each gets enough rounds to be measured.
constexpr long kSectionIterations = 2000000;
constexpr long kMutexIterations = 20000;

}  // namespace

int main() {
    ICritSect* section = CriticalSection_New();
    CRITICAL_SECTION raw;
    InitializeCriticalSection(&raw);
    HANDLE mutex = CreateMutexA(nullptr, FALSE, "kt-bench-named-mutex");

    const auto enterLeave = [&] {
        section->Enter();
        section->Leave();
    };
    const kt::bench::PairOfFigures both = kt::bench::NanosecondsPerCallInTurn(
        enterLeave,
        [&] {
            WaitForSingleObject(mutex, INFINITE);
            EnterCriticalSection(&raw);
            LeaveCriticalSection(&raw);
            ReleaseMutex(mutex);
        },
        kMutexIterations);
    const double rawSection = kt::bench::NanosecondsPerCall(
        [&] {
            EnterCriticalSection(&raw);
            LeaveCriticalSection(&raw);
        },
        kSectionIterations);
    const kt::bench::PairOfFigures holdAll = kt::bench::NanosecondsPerCallInTurn(
        [] {
            Wait_All(-1);
            Wait_Release();
        },
        [&] {
            WaitForSingleObject(mutex, INFINITE);
            ReleaseMutex(mutex);
        },
        kMutexIterations);

    kt::bench::PrintRatioHeader();
    kt::bench::PrintRatio("EnterLeave", "CRITICAL_SECTION", both.ours, rawSection);
    kt::bench::PrintRatio("EnterLeave", "mutex+section", both.ours, both.theirs);
    kt::bench::PrintRatio("HoldAll", "named mutex", holdAll.ours, holdAll.theirs);

    CloseHandle(mutex);
    DeleteCriticalSection(&raw);
    section->Release();
    return 0;
}
