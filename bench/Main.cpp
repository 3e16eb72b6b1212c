// The benchmarks' program: measures every node type against its floors and answers whether all limits were kept.

#include <algorithm>
#include <cstdio>
#include <exception>
#include <functional>
#include <thread>
#include <vector>

#include <benchmark/benchmark.h>

#include "CallCounts.h"
#include "Comparison.h"
#include "HostSetup.h"
#include "RatioReport.h"
#include "base/Platform.h"

namespace {

void Run(benchmark::State& state, const std::function<bool()>& work, size_t nNodes) {
    work(); // what is made on first use isn't measured
    const SCallCounts before = CallCounts();
    for (auto _ : state) {
        if (!work()) {
            state.SkipWithError("not every node did its work");
            break;
        }
    }
    const SCallCounts after = CallCounts();
    const auto nCalls = static_cast<double>(state.iterations()) * static_cast<double>(nNodes);
    state.counters[ALLOCATIONS] = static_cast<double>(after.nAllocations - before.nAllocations) / nCalls;
    state.counters[LOOK_UPS] = static_cast<double>(after.nLookUps - before.nLookUps) / nCalls;
}

/// Measured work and floor are repeated in random order, so that both meet the same disturbances.
size_t RunAll(std::span<const Comparison> comparisons, CRatioReport& report) {
    for (const Comparison& comparison : comparisons) {
        for (const Side side : {Side::Measured, Side::Floor}) {
            benchmark::RegisterBenchmark(
                comparison.BenchmarkName(side).c_str(), [&comparison, side](benchmark::State& state) {
                    if (comparison.begin) {
                        comparison.begin();
                    }
                    Run(state, side == Side::Measured ? comparison.measured : comparison.floor, comparison.nNodes);
                });
        }
    }
    const size_t nRun = benchmark::RunSpecifiedBenchmarks(&report);
    benchmark::ClearRegisteredBenchmarks();
    return nRun;
}

/// Every node type that the module makes is to be measured; false when one isn't.
bool CheckAllTypesMeasured(const CBenchHost& host) {
    CArray<SIOProcessNodeInfo> arNodeInfo;
    host.GetCatalogue(arNodeInfo);
    bool bAllMeasured = true;
    for (INT_PTR i = 0; i < arNodeInfo.GetSize(); ++i) {
        const SIOProcessNodeInfo& info = arNodeInfo[i];
        const auto types = MeasuredTypes();
        const bool bMeasured = std::any_of(types.begin(), types.end(), [&](const MeasuredType& type) {
            return IsEqualGUID(type.guidType, info.guidType);
        });
        P_ExtDevIOProcess* pNode = bMeasured ? nullptr : host.CreateNode(info.guidType);
        if (pNode != nullptr) {
            host.DestroyNode(info.guidType, pNode);
            std::printf("%s: not measured; it lacks a row in MeasuredTypes.cpp\n", ToUtf8(info.strName).c_str());
            bAllMeasured = false;
        }
    }
    return bAllMeasured;
}

bool MeasureAll() {
    CRatioReport report;
    bool bWithinLimits = true;
    size_t nRun = 0;
    const auto measure = [&](std::span<const Comparison> comparisons) {
        nRun += RunAll(comparisons, report);
        bWithinLimits &= report.PrintTable(comparisons);
    };
    for (const size_t nNodes : {13, 130, 1300, 13000}) {
        measure(MakeHostComparisons(nNodes));
    }
    CBenchHost host;
    // Before the many broadcast send nodes of one type, each of which takes a socket for good.
    measure(MakeNetworkComparisons(host));
    measure(MakeJsonComparisons(host));
    measure(MakeOscComparison(host));
    host.PostReportedEvents();
    // One type after the other, so that only one population takes memory.
    for (const MeasuredType& type : MeasuredTypes()) {
        const CPopulation population(host, type);
        measure(MakeComparisons(type, host, population));
    }
    if (nRun == 0) {
        return false;
    }
    return CheckAllTypesMeasured(host) && bWithinLimits;
}

} // namespace

int main(int argc, char** argv) {
    AllowManySockets(); // each broadcast send node has one
    std::thread([] {
    }).join(); // as in a running host: while a process has had one thread only, pointers are counted without atomics
    // Defaults of this program; what the command line says comes after them and counts.
    char szRepetitions[] = "--benchmark_repetitions=11";
    char szInterleaving[] = "--benchmark_enable_random_interleaving=true";
    char szMinimumTime[] = "--benchmark_min_time=0.05";
    std::vector<char*> arguments{argv[0], szRepetitions, szInterleaving, szMinimumTime};
    arguments.insert(arguments.end(), argv + 1, argv + argc);
    int nArguments = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    benchmark::Initialize(&nArguments, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(nArguments, arguments.data())) {
        return 1;
    }
    try {
        return MeasureAll() ? 0 : 1;
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "qorio_bench: %s\n", exception.what());
        return 1;
    }
}
