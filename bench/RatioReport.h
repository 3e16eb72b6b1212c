// Turns the benchmarks' runs into ratios of medians, printed against their limits.
#pragma once

#include <map>
#include <span>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "Comparison.h"

/// Counters of a run, for one node and iteration.
inline constexpr const char* ALLOCATIONS = "allocations";
inline constexpr const char* LOOK_UPS = "look-ups";

/// Collects the runs of one type's comparisons.
class CRatioReport : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context& context) override;
    void ReportRuns(const std::vector<Run>& runs) override;

    /// Print a line for each comparison that ran, and forget the runs; false when a limit is exceeded or a run failed.
    bool PrintTable(std::span<const Comparison> comparisons);

private:
    struct Samples {
        std::vector<double> nanoseconds; ///< of one iteration, in each repetition
        std::vector<double> allocations; ///< for one node and iteration, in each repetition
        std::vector<double> lookUps;     ///< likewise
    };

    bool PrintLine(const Comparison& comparison, const Samples& measured, const Samples& floor) const;

    std::map<std::string, Samples> m_samples;
    bool m_bContextShown = false;
    bool m_bHeaderShown = false;
    bool m_bFailed = false;
};
