// A Google Benchmark reporter that, after the usual table, prints each of our
// figures as a ratio against its peers. A benchmark named "Case_kticore/arg"
// is ours; "Case_<peer>/arg" is a peer of the same case.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace kt::bench {

class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override;
    void Finalize() override;

private:
    struct Figure {
        std::string peer;
        double nanoseconds;
    };
    std::map<std::string, std::vector<Figure>> figures;  // by "Case/arg"
};

// Runs the registered benchmarks with the reporter; the body of main().
int RunWithRatios(int argc, char** argv);

}  // namespace kt::bench
