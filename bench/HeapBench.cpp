// Alloc + Free of one block through IHeap, against the C library's heap.
// calloc is the peer with the same contract (zero-filled blocks); malloc is
// the plain one.
#include <benchmark/benchmark.h>

#include <cstdlib>

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

}  // namespace

int main(int argc, char** argv) { return kt::bench::RunWithRatios(argc, argv); }
