// A small timing harness for the paths that only exist in the Windows build and
// run under Wine, where Google Benchmark is not built. Each figure is the best
// of several rounds, so that a round disturbed by the machine does not count.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>

namespace kt::bench {

template <class Body>
double NanosecondsPerCall(Body&& body, long iterations, int rounds = 9) {
    body();  // warm up
    double best = 0;
    for (int round = 0; round < rounds; ++round) {
        const auto start = std::chrono::steady_clock::now();
        for (long i = 0; i < iterations; ++i)
            body();
        const std::chrono::duration<double, std::nano> elapsed =
            std::chrono::steady_clock::now() - start;
        const double perCall = elapsed.count() / static_cast<double>(iterations);
        if (round == 0 || perCall < best)
            best = perCall;
    }
    return best;
}

struct PairOfFigures {
    double ours;
    double theirs;
};

// Ours and the peer's rounds in turn, each the best of its own, so that a
// machine busy with other work weighs on both alike.
template <class Ours, class Theirs>
PairOfFigures NanosecondsPerCallInTurn(Ours&& ours, Theirs&& theirs, long iterations,
                                       int rounds = 9) {
    PairOfFigures best = {NanosecondsPerCall(ours, iterations, 1),
                          NanosecondsPerCall(theirs, iterations, 1)};
    for (int round = 1; round < rounds; ++round) {
        best.ours = std::min(best.ours, NanosecondsPerCall(ours, iterations, 1));
        best.theirs = std::min(best.theirs, NanosecondsPerCall(theirs, iterations, 1));
    }
    return best;
}

// `unit` names the unit of the figures that PrintRatio is given.
inline void PrintRatioHeader(const char* unit = "ns") {
    const std::string ours = std::string("kticore ") + unit, theirs = std::string("peer ") + unit;
    std::printf("%-28s %-16s %12s %12s %8s\n", "case", "peer", ours.c_str(), theirs.c_str(),
                "ratio");
}

inline void PrintRatio(const char* name, const char* peer, double ours, double theirs) {
    std::printf("%-28s %-16s %12.1f %12.1f %7.2fx\n", name, peer, ours, theirs, ours / theirs);
}

}  // namespace kt::bench
