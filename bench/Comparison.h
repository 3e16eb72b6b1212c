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
/// for: when it doesn't find a parameter, or posts another event than the node.
std::vector<Comparison> MakeComparisons(const MeasuredType& type, CBenchHost& host, const CPopulation& population);

/// The samples of a pointer and of a VR controller, which come many times a second: none for most types. They hold on
/// to host, type and population. Throws when a node doesn't take the samples, or when the floor leaves other outputs
/// than the node.
std::vector<Comparison> MakeSampleComparisons(const MeasuredType& type, CBenchHost& host,
                                              const CPopulation& population);

/// The network nodes at real sockets, and what the host makes of a received broadcast. They hold on to the host, which
/// they give a device meanwhile. Throws when a socket can't be had, or when a floor doesn't stand for what is measured:
/// when node and floor send other bytes, or the text that the floor parses isn't the broadcast's.
std::vector<Comparison> MakeNetworkComparisons(const CBenchHost& host);

/// The device JSON receive node against the bare parse of the same text. They hold on to the host. Throws when a node
/// doesn't do what is to be measured.
std::vector<Comparison> MakeJsonComparisons(const CBenchHost& host);

/// An event of a node, without its log line, and the floor of all events, against an Open Sound Control message with as
/// many arguments that is written and dispatched by liblo. They hold on to the host, whose log is off meanwhile.
std::vector<Comparison> MakeOscComparison(CBenchHost& host);

/// The reference host around its nodes: frames, events and requests in a scene of as many nodes, the same number of
/// each type. They have a session of their own: there is one host at a time in a process. Throws when the session or a
/// node can't be had.
std::vector<Comparison> MakeHostComparisons(size_t nNodes);

/// Post the events that a node would for the records.
void PostSameEvents(const CPlacedNode& placed, const FiringEvent& firing);
