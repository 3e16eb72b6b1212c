// Parameter sets of nodes and graph nodes: copies, removal, and restoring them from plain data.
#pragma once

#include <memory>

#include "host/ParamModel.h"
#include "scene/Document.h"

/// All groups of a list with all that can be told of their parameters.
std::vector<SGroupState> StateOf(const VEKParamGroupList& lstGroup);

SValues ValuesOf(const VEKParam& param);

/// Append copies of all groups to the other list, which then owns them.
void CloneGroups(const VEKParamGroupList& lstFrom, VEKParamGroupList& lstTo);

/// Take the first parameter of that id out of the groups; the caller owns it. Null if absent.
std::unique_ptr<VEKParam> TakeParam(VEKParamGroupList& lstGroup, unsigned nId);

/// Make the list hold exactly these groups and parameters, in this order: existing ones stay and take the values given,
/// missing ones are made, others deleted. New parameters are pins in an output list (bOutputs), else ordinary.
void RestoreGroups(VEKParamGroupList& lstGroup, const std::vector<SGroupState>& groups, bool bOutputs);

/// Change groups from `from` to `to`. Parameters that are equal in both keep their present values.
void ChangeGroups(VEKParamGroupList& lstGroup, const std::vector<SGroupState>& from, const std::vector<SGroupState>& to,
                  bool bOutputs);

/// Change a node's own groups to what a project holds. A parameter that gets a value or a flag and isn't there is added
/// to the first group, as older sets hold parameters that today's nodes don't make; dropping or emptying one that isn't
/// there is refused.
void ApplySavedSet(const SSavedSet& saved, VEKParamGroupList& lstOwn);
