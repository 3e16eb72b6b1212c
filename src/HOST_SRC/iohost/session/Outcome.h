// What became of a command.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "engine/Activity.h"
#include "engine/Host.h"
#include "engine/JsonVerdicts.h"
#include "network/Peers.h"
#include "scene/Document.h"
#include "scene/OutputChanges.h"
#include "session/HeldInput.h"
#include "session/History.h"
#include "session/SceneDocument.h"

/// One entry of the module's catalogue.
struct SNodeType {
    GUID guid;
    int nKind;
    CString strName;
    CString strAux;
    CString strTip;
    bool bIcon;
    int nEnable;
    std::array<unsigned, 4> reserved;
};

struct SCatalogue {
    std::vector<SNodeType> types;
};

struct SCalled {
    int nResult;
};

struct SCreated {
    int nResult;
    bool bCreated; ///< false: the slot was left untouched, there is no node
};

struct SNodeDetails {
    GUID guidType;
    int nKindCode;
    CString strName;
    CString strSecondName;
    std::vector<SGroupState> own;
    std::vector<SGroupState> inputs;
    std::vector<SGroupState> outputs;
};

struct SNodesDetails {
    std::vector<std::pair<std::string, SNodeDetails>> nodes; ///< by their handles
};

struct SLayout {
    CString strPath;
    const void* pReader;
    const void* pState;
    const void* pArray;
    long long nGroups;
};

/// What each node answered; none where the module raised an exception.
struct SNodeResults {
    std::vector<std::pair<const SNode*, std::optional<int>>> results; ///< in their order; valid until the next command
    bool bTaken = false;                                              ///< one of them took the event
};

struct SFrameResults : SNodeResults {
    OutputValues outputs; ///< that changed since the frame before
};

struct SEdited {
    bool bNeeded;              ///< the node said that it wants to be told
    std::optional<int> result; ///< its answer when told; none: it wasn't told
};

struct SReleased {
    std::vector<SRelease> releases;
};

struct SListening {
    std::optional<unsigned short> broadcast;
    std::optional<unsigned short> control;
};

/// An item that came from the network.
struct SDispatched {
    EPeer nFrom;
    int nDevice;
    int nEvent;
    SNodeResults results;
};

struct SWaited {
    std::vector<SDispatched> dispatched;
};

struct SSceneNode {
    std::string strHandle;
    GUID guidType;
    std::optional<CString> clip;
    CString strGraph;
    CString strName;
    std::optional<SPlace> place = {};
};

struct SSceneView {
    unsigned long long nVersion;
    std::vector<SSceneNode> nodes;
    std::vector<SLinkDocument> links;
    Notes notes = {};
};

/// Which step was undone or redone.
struct SStepTaken {
    SStep step;
};

struct SHistoryState {
    std::vector<SStep> steps;               ///< oldest first
    size_t nDone;                           ///< how many of them are done; the others were undone
    std::vector<unsigned long long> states; ///< of the scene: before the first step, and after each
    SSceneFile file;
};

/// A file in the folder of scenes.
struct SSceneFileInfo {
    std::string strName; ///< relative to the folder
    std::uintmax_t nBytes;
    long long nModifiedMs; ///< since 1970
};

struct SScenes {
    std::vector<SSceneFileInfo> files;
};

struct SObjects {
    std::vector<SObjectState> objects;
};

struct SVerdicts {
    Verdicts nodes;
};

struct SLogLines {
    std::vector<SKeptLine> lines;
};

struct SCounters {
    std::vector<std::pair<std::string, SNodeCounts>> nodes;  ///< by their handles
    std::vector<std::pair<std::string, std::uint64_t>> idle; ///< milliseconds since each last acted, if it ever did
};

using Result =
    std::variant<std::monostate, SCatalogue, SCalled, SCreated, SNodeDetails, SLayout, SDestroyed, SNodeResults,
                 SFrameResults, SEdited, SReleased, SListening, SWaited, SNetworkState, SSceneView, SObjects, SVerdicts,
                 SLogLines, SCounters, SSceneDocument, SStepTaken, SHistoryState, SScenes, SNodesDetails>;

struct SOutcome {
    Result result;
    std::optional<std::string> error = {}; ///< why it wasn't done, or what the module raised
};

/// Where a command came from.
struct SOrigin {
    CHeldInput* pHeld = nullptr;    ///< account of the connection that sent it; null for a front without connections
    std::optional<EPeer> from = {}; ///< an item of the network: a node's fault doesn't stop the others
};

/// A command that was carried out, or anything else that happened.
struct SDone {
    const Command* pCommand; ///< null: what happened between commands
    SOrigin origin;
    SOutcome outcome;
    SActivity activity;    ///< what the module did meanwhile
    SSceneChange change{}; ///< what it changed of the scene
};
