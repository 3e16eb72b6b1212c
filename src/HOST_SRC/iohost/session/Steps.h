// Commands as steps of the scene's history.
#pragma once

#include <optional>

#include "session/Command.h"
#include "session/History.h"

/// How a command stands in the history, told before it is carried out.
struct SStepPlan {
    SStep step;
    SSceneScope scope; ///< what it may change
};

/// Nothing for a command that changes nothing of the scene, or moves in the history.
std::optional<SStepPlan> PlanOf(const Command& command, CScene& scene, const CPeers& peers);
