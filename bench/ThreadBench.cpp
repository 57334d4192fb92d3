// Enter + Leave of an uncontended critical section, against std::mutex in the
// same run, and like for like against the two locks a section takes, taken by
// hand: the process-wide mutex that all processes share (a robust,
// process-shared, recursive pthread mutex here) and then its own recursive
// one. HoldAll (Wait_All + Wait_Release) measures the first alone.
#include <benchmark/benchmark.h>
#include <pthread.h>

#include <mutex>

#include "bench/harness/RatioReporter.h"
#include "kticore/core/Threads.h"

namespace {

// A recursive pthread mutex; robust and process-shared like the shared lock.
class PthreadMutex {
public:
    explicit PthreadMutex(bool shared) {
        pthread_mutexattr_t attributes;
        pthread_mutexattr_init(&attributes);
        pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
        if (shared) {
            pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
            pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
        }
        pthread_mutex_init(&mutex, &attributes);
        pthread_mutexattr_destroy(&attributes);
    }
    ~PthreadMutex() { pthread_mutex_destroy(&mutex); }
    void lock() { pthread_mutex_lock(&mutex); }
    void unlock() { pthread_mutex_unlock(&mutex); }

private:
    pthread_mutex_t mutex;
};

struct SharedRobustMutex : PthreadMutex {
    SharedRobustMutex() : PthreadMutex(true) {}
};

// What a section does, by hand: the shared lock, then a recursive one.
class SharedThenOwn {
public:
    void lock() {
        shared.lock();
        own.lock();
    }
    void unlock() {
        own.unlock();
        shared.unlock();
    }

private:
    PthreadMutex shared{true};
    PthreadMutex own{false};
};

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
BENCHMARK_TEMPLATE(LockUnlock, SharedThenOwn)->Name("EnterLeave_byhand");
BENCHMARK(HoldAll_kticore);
BENCHMARK_TEMPLATE(LockUnlock, std::mutex)->Name("HoldAll_stdmutex");
BENCHMARK_TEMPLATE(LockUnlock, SharedRobustMutex)->Name("HoldAll_byhand");

}  // namespace

int main(int argc, char** argv) { return kt::bench::RunWithRatios(argc, argv); }
