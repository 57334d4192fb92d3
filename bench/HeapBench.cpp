// Alloc + Free of one block through IHeap, against the C library's heap.
// calloc is the peer with the same contract (zero-filled blocks); malloc is
// the plain one. Each runs twice: in a process of one thread, and with a
// second thread waiting, which makes every lock a real one.
#include <benchmark/benchmark.h>

#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <thread>

#include "bench/harness/RatioReporter.h"
#include "kticore/core/Heap.h"

namespace {

void AllocFree_kticore(benchmark::State& state) {
    IHeap* heap = new_MemoryHeap(0);
    const auto size = static_cast<size_t>(state.range(0));
    for (auto _ : state) {
        void* block = heap->Alloc(size);
        benchmark::DoNotOptimize(block);
        heap->Free(block);
    }
    heap->Release();
}

void AllocFree_calloc(benchmark::State& state) {
    const auto size = static_cast<size_t>(state.range(0));
    for (auto _ : state) {
        void* block = std::calloc(1, size);
        benchmark::DoNotOptimize(block);
        std::free(block);
    }
}

void AllocFree_malloc(benchmark::State& state) {
    const auto size = static_cast<size_t>(state.range(0));
    for (auto _ : state) {
        void* block = std::malloc(size);
        benchmark::DoNotOptimize(block);
        std::free(block);
    }
}

BENCHMARK(AllocFree_kticore)->Arg(16)->Arg(256)->Arg(4096);
BENCHMARK(AllocFree_calloc)->Arg(16)->Arg(256)->Arg(4096);
BENCHMARK(AllocFree_malloc)->Arg(16)->Arg(256)->Arg(4096);

// A thread that waits, doing nothing, for as long as it lives.
class WaitingThread {
public:
    WaitingThread() : thread([this] {
        std::unique_lock<std::mutex> lock(mutex);
        wake.wait(lock, [this] { return done; });
    }) {}
    ~WaitingThread() {
        {
            std::lock_guard<std::mutex> lock(mutex);
            done = true;
        }
        wake.notify_one();
        thread.join();
    }

private:
    std::mutex mutex;
    std::condition_variable wake;
    bool done = false;
    std::thread thread;
};

template <void (*Body)(benchmark::State&)>
void WithAThread(benchmark::State& state) {
    WaitingThread other;
    Body(state);
}

BENCHMARK_TEMPLATE(WithAThread, AllocFree_kticore)->Name("AllocFreeThreaded_kticore")->Arg(16);
BENCHMARK_TEMPLATE(WithAThread, AllocFree_calloc)->Name("AllocFreeThreaded_calloc")->Arg(16);

}  // namespace

int main(int argc, char** argv) { return kt::bench::RunWithRatios(argc, argv); }
