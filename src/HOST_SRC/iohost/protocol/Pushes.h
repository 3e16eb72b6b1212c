// What the page's server pushes over its WebSocket, besides plain results.
#pragma once

#include "protocol/Shapes.h"

struct SHelloPush {
    std::string strVersion;
    double fFps;
    std::string strAddress;
    int nConnection;
    unsigned nScene;
};

struct SFramePush {
    unsigned long long nFrame;
};

struct SHappenedPush {
    SActivity activity;
    unsigned long long nFrame;
};

struct SOutputsPush {
    OutputValues nodes;
};

struct SHeldPush {
    std::vector<SHeldEntry> held;
    std::optional<std::vector<int>> released = {}; ///< connections whose input another one let go of
};

/// One of the three tells what changed.
struct SScenePush {
    unsigned long long nVersion;
    std::optional<std::vector<std::string>> nodes = {};   ///< their parameters
    std::optional<std::vector<std::string>> changed = {}; ///< these, and what the scene lists
    std::optional<unsigned> scene = {};                   ///< it's another one
};

/// What an earlier host left unsaved.
struct SLeftScene {
    std::string strFile;   ///< that the scene was saved in before; empty: in none
    long long nModifiedMs; ///< since 1970
};

enum class EStepWas { Taken, Undone, Redone };
NAMES(EStepWas, "taken", "undone", "redone")

struct SStepPush {
    EStepWas nWas;
    SStep step;
};

struct SHistoryPush {
    std::optional<SStep> undo;
    std::optional<SStep> redo;
    unsigned long long nState;
    SSceneFile file;
    std::optional<SLeftScene> recovered;
};

TAGGED(SHelloPush, "hello", SField{"version", &T::strVersion}, SField{"fps", &T::fFps},
       SField{"address", &T::strAddress}, SField{"connection", &T::nConnection}, SField{"scene", &T::nScene})
TAGGED(SFramePush, "frame", SField{"frame", &T::nFrame})
TAGGED(SHappenedPush, "happened", SFlat{&T::activity}, SField{"frame", &T::nFrame})
TAGGED(SOutputsPush, "outputs", SField{"nodes", &T::nodes})
TAGGED(SHeldPush, "held", SField{"held", &T::held}, SField{"released", &T::released, FIELD_OPTIONAL})
TAGGED(SScenePush, "scene", SField{"version", &T::nVersion}, SField{"nodes", &T::nodes, FIELD_OPTIONAL},
       SField{"changed", &T::changed, FIELD_OPTIONAL}, SField{"scene", &T::scene, FIELD_OPTIONAL})
SHAPE(SLeftScene, SField{"file", &T::strFile, FIELD_NULLABLE}, SField{"modified_ms", &T::nModifiedMs})
TAGGED(SStepPush, "step", SField{"was", &T::nWas}, SField{"step", &T::step})
TAGGED(SHistoryPush, "history", SField{"undo", &T::undo, FIELD_NULLABLE}, SField{"redo", &T::redo, FIELD_NULLABLE},
       SField{"state", &T::nState}, SFlat{&T::file}, SField{"recovered", &T::recovered, FIELD_OPTIONAL})
TAG(SCounters, "counters")
TAG(SDroppedItems, "dropped")
TAG(SNetworkState, "network")
TAG(SObjects, "objects")
TAG(SVerdicts, "json")

using Push = std::variant<SHelloPush, SFramePush, SHappenedPush, SOutputsPush, SHeldPush, SScenePush, SStepPush,
                          SHistoryPush, SCounters, SDroppedItems, SNetworkState, SObjects, SVerdicts>;
UNION(Push, "push")

void CutForViewers(Push& told); ///< as those of Protocol.h
