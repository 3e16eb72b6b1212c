// The node types that are measured, as data. A further node type is a further row.
#pragma once

#include <memory>
#include <span>

#include "host/EventRecord.h"

class CPlacedNode;
using Nodes = std::span<const std::unique_ptr<CPlacedNode>>;

/// An input that holds something else than in a new node.
struct Setting {
    unsigned nId;
    int nValue;
    const wchar_t* pszValue;
};

/// Records that fire outputs, whenever they are handed over one after the other.
struct FiringEvent {
    const char* pszName;
    std::span<const SIOEventRecord> records;
    std::span<const int> outputs; ///< that fire
    double fOwnAllocations;       ///< of the node, beside the events
    double fOwnLookUps;           ///< also of the events' display texts, four each
};

/// The largest number of nodes that operations are measured with.
inline constexpr size_t LARGEST_NODE_COUNT = 10000;

/// Name of the nodes' clip, and of the scene object in it.
inline constexpr wchar_t MEASURED_CLIP[] = L"Clip";
inline constexpr wchar_t MEASURED_OBJECT[] = L"Hand";

struct MeasuredType {
    const char* pszName;
    GUID guidType;
    /// What ProcessNode can't do without when nothing changed; false when something that it looks up isn't there.
    bool (*pFloor)(Nodes);
    std::span<const FiringEvent> events = {};
    std::span<const Setting> settings = {};
    /// An event input, and the same when it's triggered.
    unsigned nTrigger = 0;
    bool (*pTriggeredFloor)(Nodes) = nullptr;
};

std::span<const MeasuredType> MeasuredTypes();
