// CTMap lookup by narrow key in its fixed table of 127 buckets, against
// std::unordered_map<std::string, int>, which grows its table. The fixed table
// is the contract, so this is a figure to know rather than to beat.
#include <benchmark/benchmark.h>

#include <string>
#include <unordered_map>
#include <vector>

#include "bench/harness/RatioReporter.h"
#include "kticore/core/Map.h"

namespace {

std::vector<std::string> Keys(size_t count) {
    std::vector<std::string> keys;
    for (size_t i = 0; i < count; ++i)
        keys.push_back("section/value" + std::to_string(i));
    return keys;
}

void Lookup_kticore(benchmark::State& state) {
    const auto keys = Keys(static_cast<size_t>(state.range(0)));
    CTMap<const char*, int> map;
    for (size_t i = 0; i < keys.size(); ++i)
        map.Set(keys[i].c_str(), static_cast<int>(i));
    size_t next = 0;
    for (auto _ : state) {
        int value = 0;
        map.Lookup(keys[next].c_str(), value);
        benchmark::DoNotOptimize(value);
        next = next + 1 == keys.size() ? 0 : next + 1;
    }
}

void Lookup_unordered_map(benchmark::State& state) {
    const auto keys = Keys(static_cast<size_t>(state.range(0)));
    std::unordered_map<std::string, int> map;
    for (size_t i = 0; i < keys.size(); ++i)
        map[keys[i]] = static_cast<int>(i);
    size_t next = 0;
    for (auto _ : state) {
        auto found = map.find(keys[next]);
        benchmark::DoNotOptimize(found);
        next = next + 1 == keys.size() ? 0 : next + 1;
    }
}

BENCHMARK(Lookup_kticore)->Arg(100)->Arg(1000)->Arg(10000);
BENCHMARK(Lookup_unordered_map)->Arg(100)->Arg(1000)->Arg(10000);

}  // namespace

int main(int argc, char** argv) { return kt::bench::RunWithRatios(argc, argv); }
