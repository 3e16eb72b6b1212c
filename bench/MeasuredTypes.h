// The node types that are measured, as data. A further node type is a further row.
#pragma once

#include <span>

#include "host/EventRecord.h"

/// Where ProcessNode looks something up.
enum class Place {
    Input,      ///< a parameter of the graph node's inputs, then of the node's own groups
    Trigger,    ///< a parameter of the graph node's inputs alone
    Output,     ///< a parameter of the graph node's outputs
    Key,        ///< the keyboard's state, by a virtual-key code
    MainWindow, ///< whether the application's main window takes input
};

/// One look-up.
struct LookUp {
    Place place;
    unsigned nId = 0;
};

/// An input that holds something else than in a new node.
struct Setting {
    unsigned nId;
    int nValue;
    const wchar_t* pszValue;
};

/// One output that is fired, and the log line before it.
struct Fired {
    int nOutput;
    const wchar_t* pszLogFormat; ///< takes the names of clip, graph node and node, then pszLogText; null: no line
    const wchar_t* pszLogText;
    bool bByHost = false; ///< by PostGeneralEventMessage, which has the host build and post the event
};

/// Records that fire outputs, whenever they are handed over one after the other.
struct FiringEvent {
    const char* pszName;
    std::span<const SIOEventRecord> records;
    std::span<const Fired> fired;
    double fOwnAllocations = 0; ///< of the node, beside the events and log lines
    double fOwnLookUps = 0;     ///< of parameters
};

/// The largest number of nodes that operations are measured with.
inline constexpr size_t LARGEST_NODE_COUNT = 10000;

/// Name of the nodes' clip, and of the scene object in it.
inline constexpr wchar_t MEASURED_CLIP[] = L"Clip";
inline constexpr wchar_t MEASURED_OBJECT[] = L"Hand";

struct MeasuredType {
    const char* pszName;
    GUID guidType;
    /// What ProcessNode must look up when nothing changed, in order: each input that its result depends on and each
    /// value output that it writes.
    std::span<const LookUp> lookUps;
    std::span<const FiringEvent> events = {};
    std::span<const Setting> settings = {};
};

std::span<const MeasuredType> MeasuredTypes();
