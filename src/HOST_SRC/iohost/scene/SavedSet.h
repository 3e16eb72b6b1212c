// A node's parameter set out of an older or damaged project, as the field "saved" of `create` describes it.
#pragma once

#include <optional>
#include <vector>

#include "host/ParamModel.h"
#include "protocol/Fields.h"

struct SSavedSet {
    std::vector<std::pair<unsigned, Json>> arValue;    ///< parameter and its value: integer, float or string
    std::vector<unsigned> arDrop;                      ///< parameters that the set doesn't have
    std::vector<std::pair<unsigned, int>> arAvailable; ///< parameter and its availability flag
    std::vector<unsigned> arEmptyChoices;              ///< choice parameters without labels
    bool bGroups = true;                               ///< false: no parameter group at all
    std::optional<Json> pins;                          ///< output groups in the form that RestoreGroups takes
};

/// Read and check the field.
SSavedSet ReadSavedSet(const CFields& saved);

/// Change a node's own groups to what the project holds. A parameter that gets a value or a flag and isn't there is
/// added to the first group, as older sets hold parameters that today's nodes don't make; dropping or emptying one that
/// isn't there is refused.
void ApplySavedSet(const SSavedSet& saved, VEKParamGroupList& lstOwn);
