// Enter + Leave of an uncontended critical section, against std::mutex in the
// same run. A section of the library takes two locks: the process-wide mutex
// that all processes share (a robust, process-shared, recursive pthread mutex
// here) and then its own recursive one. HoldAll (Wait_All + Wait_Release)
// measures the first alone, std::recursive_mutex stands for the second.
#include <benchmark/benchmark.h>

#include <mutex>

#include "bench/harness/RatioReporter.h"
#include "kticore/core/Threads.h"

namespace {

void EnterLeave_kticore(benchmark::State& state) {
    ICritSect* section = CriticalSection_New();
    for (auto _ : state) {
        section->Enter();
        section->Leave();
    }
    section->Release();
}

template <class Mutex>
void LockUnlock(benchmark::State& state) {
    Mutex mutex;
    for (auto _ : state) {
        mutex.lock();
        mutex.unlock();
    }
}

void HoldAll_kticore(benchmark::State& state) {
    ICritSect* section = CriticalSection_New();  // without one there is no mutex to take
    for (auto _ : state) {
        Wait_All(-1);
        Wait_Release();
    }
    section->Release();
}

BENCHMARK(EnterLeave_kticore);
BENCHMARK_TEMPLATE(LockUnlock, std::mutex)->Name("EnterLeave_stdmutex");
BENCHMARK_TEMPLATE(LockUnlock, std::recursive_mutex)->Name("EnterLeave_recursivemutex");
BENCHMARK(HoldAll_kticore);
BENCHMARK_TEMPLATE(LockUnlock, std::mutex)->Name("HoldAll_stdmutex");

}  // namespace

int main(int argc, char** argv) { return kt::bench::RunWithRatios(argc, argv); }
