// What is compared: an operation of a node, and the floor below which it can't go.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "MeasuredTypes.h"
#include "Population.h"

enum class Side { Measured, Floor };

struct Comparison {
    std::string strName; ///< "Mouse/ProcessNode/100"
    size_t nNodes;
    double fRatioLimit;
    bool bMayAllocate; ///< false: not once; true: no more often than the floor
    /// Does the work once for every node; false when it went wrong.
    std::function<bool()> measured;
    std::function<bool()> floor;
    double fOwnAllocations = 0;       ///< beyond the floor's, where it may allocate
    double fOwnLookUps = 0;           ///< beyond the floor's
    std::function<void()> begin = {}; ///< called before every run of either side, without being measured

    std::string BenchmarkName(Side side) const { return strName + (side == Side::Measured ? "/measured" : "/floor"); }
};

/// The comparisons of one type, which hold on to host and population. Throws when a floor doesn't do what it stands
/// for: when it finds other parameters missing, or posts another event than the node.
std::vector<Comparison> MakeComparisons(const MeasuredType& type, CBenchHost& host, const CPopulation& population);

/// Write the log lines and post the events that a node would for the records.
void PostSameEvents(const CPlacedNode& placed, const FiringEvent& firing);
