#include "RatioReport.h"

#include <algorithm>
#include <cstdio>

namespace {

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The message queue takes its memory in blocks, so that an event's share varies a little. Where it stands between two
/// blocks it takes one for every event, which is why events are judged by the median repetition.
constexpr double QUEUE_SHARE = 0.2;

} // namespace

bool CRatioReport::ReportContext(const Context& context) {
    if (!m_bContextShown) {
        m_bContextShown = true;
        std::printf("%d processors", context.cpu_info.num_cpus);
        if (!context.cpu_info.load_avg.empty()) {
            std::printf(", load average %.2f", context.cpu_info.load_avg[0]);
        }
        std::printf("\n\n");
    }
    return true;
}

void CRatioReport::ReportRuns(const std::vector<Run>& runs) {
    for (const Run& run : runs) {
        if (run.error_occurred) {
            std::printf("%s: %s\n", run.benchmark_name().c_str(), run.error_message.c_str());
            m_bFailed = true;
        } else if (run.run_type == Run::RT_Iteration) {
            // Processor time: what other programs use of the machine meanwhile isn't counted.
            Samples& samples = m_samples[run.run_name.function_name];
            samples.nanoseconds.push_back(run.cpu_accumulated_time * 1e9 / static_cast<double>(run.iterations));
            samples.allocations.push_back(run.counters.at(ALLOCATIONS));
            samples.lookUps.push_back(run.counters.at(LOOK_UPS));
        }
    }
}

bool CRatioReport::PrintTable(std::span<const Comparison> comparisons) {
    bool bWithinLimits = !m_bFailed;
    if (!m_samples.empty() && !m_bHeaderShown) {
        m_bHeaderShown = true;
        std::printf("%-36s %23s %15s %19s %13s\n", "", "ns per node (median)", "ratio", "allocations", "look-ups");
        std::printf("%-36s %11s %11s %7s %7s %12s %6s %6s %6s\n", "what / number of nodes", "measured", "floor", "",
                    "limit", "per node", "limit", "", "limit");
    }
    for (const Comparison& comparison : comparisons) {
        const auto measured = m_samples.find(comparison.BenchmarkName(Side::Measured));
        const auto floor = m_samples.find(comparison.BenchmarkName(Side::Floor));
        if (measured != m_samples.end() && floor != m_samples.end()) {
            bWithinLimits &= PrintLine(comparison, measured->second, floor->second);
        }
    }
    m_samples.clear();
    m_bFailed = false;
    return bWithinLimits;
}

bool CRatioReport::PrintLine(const Comparison& comparison, const Samples& measured, const Samples& floor) const {
    const double fMeasured = Median(measured.nanoseconds) / static_cast<double>(comparison.nNodes);
    const double fFloor = Median(floor.nanoseconds) / static_cast<double>(comparison.nNodes);
    const double fRatio = fMeasured / fFloor;
    const bool bTooSlow = fRatio > comparison.fRatioLimit;

    double fAllocations = *std::max_element(measured.allocations.begin(), measured.allocations.end());
    double fAllocationLimit = 0;
    bool bTooManyAllocations = fAllocations > 0;
    if (comparison.bMayAllocate) {
        fAllocations = Median(measured.allocations);
        fAllocationLimit = Median(floor.allocations) + comparison.fOwnAllocations;
        bTooManyAllocations = fAllocations > fAllocationLimit + QUEUE_SHARE;
    }

    const double fLookUps = Median(measured.lookUps);
    const double fLookUpLimit = Median(floor.lookUps) + comparison.fOwnLookUps;
    const bool bTooManyLookUps = fLookUps > fLookUpLimit;

    std::printf("%-36s %11.1f %11.1f %7.2f %7.2f %12.3g %6.3g %6.3g %6.3g%s%s%s\n", comparison.strName.c_str(),
                fMeasured, fFloor, fRatio, comparison.fRatioLimit, fAllocations, fAllocationLimit, fLookUps,
                fLookUpLimit, bTooSlow ? "  RATIO EXCEEDS LIMIT" : "",
                bTooManyAllocations ? "  TOO MANY ALLOCATIONS" : "", bTooManyLookUps ? "  TOO MANY LOOK-UPS" : "");
    std::fflush(stdout);
    return !bTooSlow && !bTooManyAllocations && !bTooManyLookUps;
}
