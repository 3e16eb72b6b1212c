// The node types that are measured, as data. A further node type is a further row.
#pragma once

#include <span>

#include "host/EventRecord.h"

/// Where ProcessNode looks a parameter up.
enum class Place {
    Input,   ///< the graph node's inputs, then the node's own groups
    Trigger, ///< the graph node's inputs alone
    Output,  ///< the graph node's outputs
};

/// One look-up.
struct LookUp {
    Place place;
    unsigned nId;
};

/// An event that fires an output.
struct FiringEvent {
    const char* pszName;
    SIOEventRecord record;
    int nOutput;
    const wchar_t* pszLogFormat; ///< the log line; takes the names of clip, graph node and node, then pszLogText
    const wchar_t* pszLogText;
};

struct MeasuredType {
    const char* pszName;
    GUID guidType;
    /// What ProcessNode must look up when nothing changed, in order: each input that its result depends on and each
    /// value output that it writes.
    std::span<const LookUp> lookUps;
    std::span<const FiringEvent> events;
};

std::span<const MeasuredType> MeasuredTypes();
