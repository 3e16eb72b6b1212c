// Parameter sets of nodes and graph nodes: copies, removal, and restoring them from their JSON form.
#pragma once

#include "host/ParamModel.h"
#include "protocol/Fields.h"

/// Groups that are owned until they are handed on.
class CParamSet {
public:
    CParamSet() = default;
    ~CParamSet() { DeleteAll(); }

    CParamSet(const CParamSet&) = delete;
    CParamSet& operator=(const CParamSet&) = delete;

    VEKParamGroupList& Groups() { return m_lstGroup; }

    /// Exchange the groups with a list that owns its groups too.
    void Swap(VEKParamGroupList& lstGroup);

    void DeleteAll();

private:
    VEKParamGroupList m_lstGroup;
};

/// Append copies of all groups to the other list, which then owns them.
void CloneGroups(const VEKParamGroupList& lstFrom, VEKParamGroupList& lstTo);

/// Take the first parameter of that id out of the groups; the caller owns it. Null if absent.
std::unique_ptr<VEKParam> TakeParam(VEKParamGroupList& lstGroup, unsigned nId);

/// Make the list hold exactly the groups and parameters of a JSON list, in its order: those that the list already has
/// stay and take the values that stand there, others are made, the rest is deleted. Nothing changes on a refusal.
///   [{"id", "name", "display", "params": [{"id", "int", "float", "string", "choices", "available", ...}]}]
/// All but the ids may be missing. New parameters are pins in an output list (bOutputs), ordinary ones else.
void RestoreGroups(VEKParamGroupList& lstGroup, const Json& groups, const std::string& strPath, bool bOutputs);
