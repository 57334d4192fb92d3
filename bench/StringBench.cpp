// Strings: a copy costs one increment whatever the length (peer: std::string,
// which copies the text); Format of a typical log line against snprintf into
// a stack buffer.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "bench/harness/RatioReporter.h"
#include "kticore/strings/XString.h"

namespace {

void Copy_kticore(benchmark::State& state) {
    const CXString original(std::string(static_cast<size_t>(state.range(0)), 'x').c_str());
    for (auto _ : state) {
        CXString copy(original);
        benchmark::DoNotOptimize(static_cast<const char*>(copy));
    }
}

void Copy_stdstring(benchmark::State& state) {
    const std::string original(static_cast<size_t>(state.range(0)), 'x');
    for (auto _ : state) {
        std::string copy(original);
        benchmark::DoNotOptimize(copy.data());
    }
}

const char kLogLine[] = "%s=%d (%5.2f) %s";

void Format_kticore(benchmark::State& state) {
    CXString line;
    int n = 0;
    for (auto _ : state) {
        line.Format(kLogLine, "temperature", ++n, 21.5, "celsius");
        benchmark::DoNotOptimize(static_cast<const char*>(line));
    }
}

void Format_snprintf(benchmark::State& state) {
    char line[256];
    int n = 0;
    for (auto _ : state) {
        std::snprintf(line, sizeof line, kLogLine, "temperature", ++n, 21.5, "celsius");
        benchmark::DoNotOptimize(line);
    }
}

BENCHMARK(Copy_kticore)->Arg(1)->Arg(1 << 20);
BENCHMARK(Copy_stdstring)->Arg(1)->Arg(1 << 20);
BENCHMARK(Format_kticore);
BENCHMARK(Format_snprintf);

}  // namespace

int main(int argc, char** argv) { return kt::bench::RunWithRatios(argc, argv); }
