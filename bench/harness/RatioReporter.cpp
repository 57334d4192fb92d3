#include "bench/harness/RatioReporter.h"

#include <cstdio>

namespace kt::bench {

namespace {
constexpr char kOurs[] = "kticore";
}

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
        if (run.run_type != Run::RT_Iteration || run.iterations == 0)
            continue;
        const std::string name = run.benchmark_name();
        const size_t underscore = name.find('_');
        const size_t slash = name.find('/', underscore);
        if (underscore == std::string::npos)
            continue;
        const std::string peer = name.substr(underscore + 1, slash - underscore - 1);
        const std::string key =
            name.substr(0, underscore) + (slash == std::string::npos ? "" : name.substr(slash));
        figures[key].push_back({peer, run.GetAdjustedRealTime()});
    }
}

void RatioReporter::Finalize() {
    ConsoleReporter::Finalize();
    std::printf("\n%-28s %-10s %12s %12s %8s\n", "case", "peer", "kticore ns", "peer ns", "ratio");
    for (const auto& [key, entries] : figures) {
        const Figure* ours = nullptr;
        for (const Figure& figure : entries)
            if (figure.peer == kOurs)
                ours = &figure;
        if (ours == nullptr)
            continue;
        for (const Figure& figure : entries) {
            if (&figure == ours)
                continue;
            std::printf("%-28s %-10s %12.1f %12.1f %7.2fx\n", key.c_str(), figure.peer.c_str(),
                        ours->nanoseconds, figure.nanoseconds,
                        ours->nanoseconds / figure.nanoseconds);
        }
    }
}

int RunWithRatios(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}

}  // namespace kt::bench
