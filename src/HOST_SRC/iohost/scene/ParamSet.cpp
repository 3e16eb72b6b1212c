#include "scene/ParamSet.h"

#include <algorithm>
#include <boost/core/noncopyable.hpp>
#include <cmath>
#include <limits>
#include <map>

#include "base/Refusal.h"
#include "host/HostRender.h"
#include "scene/Scene.h"

namespace {

/// Take the first group or parameter of that id out of a list; the caller owns it. Null if absent.
template <typename Element, typename List>
std::unique_ptr<Element> Take(List& list, unsigned nId) {
    for (POSITION pos = list.GetHeadPosition(); pos != nullptr;) {
        const POSITION posElement = pos;
        Element* pElement = list.GetNext(pos);
        if (IsEqualGUID(pElement->m_guid, MakeParamGuid(nId))) {
            list.RemoveAt(posElement);
            return std::unique_ptr<Element>(pElement);
        }
    }
    return nullptr;
}

/// Owns the groups that it takes from a list.
struct SOwnedGroups : boost::noncopyable {
    explicit SOwnedGroups(VEKParamGroupList& lstFrom) {
        lstGroup.AddTail(&lstFrom);
        lstFrom.RemoveAll();
    }
    ~SOwnedGroups() {
        while (!lstGroup.IsEmpty()) {
            delete lstGroup.RemoveHead();
        }
    }

    VEKParamGroupList lstGroup;
};

float NumberOf(std::optional<float> number) {
    return number.value_or(std::numeric_limits<float>::quiet_NaN());
}

std::optional<float> NumberIn(float fNumber) {
    return std::isnan(fNumber) ? std::nullopt : std::optional(fNumber);
}

/// Make a parameter that the node itself doesn't make, as older sets may hold.
std::unique_ptr<VEKParam> MakeParam(const SParamState& state, bool bOutput) {
    const ParamCodes codes = bOutput ? PARAM_EVENT : PARAM_INTEGER;
    const int nType = state.type.value_or(codes.m_nType);
    const int nControl = state.control.value_or(codes.m_nControl);
    const CString strName = state.name.value_or(CString());
    const CString strDisplay = state.display.value_or(CString());
    std::unique_ptr<VEKParam> pParam;
    if (bOutput) {
        auto pOutput = std::make_unique<SQORNodeOutput>(state.nId, strName, strDisplay, nType, nControl);
        pOutput->m_nExtra = state.extra.value_or(0);
        pParam = std::move(pOutput);
    } else {
        pParam = std::make_unique<VEKParam>(state.nId, strName, strDisplay, nType, nControl);
    }
    if (state.range) {
        std::ranges::transform(*state.range, pParam->m_fRange, NumberOf);
        pParam->m_bRangeSet = 1;
    }
    if (state.flags) {
        const auto& flags = *state.flags;
        SetParamBoolValue(pParam.get(), flags[0], flags[1], flags[2], flags[3]);
    }
    return pParam;
}

void ApplyValues(VEKParam& param, const SParamState& state) {
    param.m_nValue = state.integer.value_or(param.m_nValue);
    param.m_fValue = state.number ? NumberOf(*state.number) : param.m_fValue;
    param.m_strValue = state.text.value_or(param.m_strValue);
    param.m_bAvailable = state.available.value_or(param.m_bAvailable);
    if (state.choices) {
        param.m_arChoice.RemoveAll();
        for (const CString& strChoice : *state.choices) {
            param.m_arChoice.Add(strChoice);
        }
    }
}

SParamState StateOf(const VEKParam& param) {
    SParamState state{.nId = static_cast<unsigned>(param.m_guid.Data1),
                      .name = param.m_strName,
                      .display = param.m_strDisplay,
                      .type = param.m_nType,
                      .control = param.m_nControl,
                      .integer = param.m_nValue,
                      .number = NumberIn(param.m_fValue),
                      .text = param.m_strValue,
                      .choices = std::vector<CString>(),
                      .available = param.m_bAvailable};
    if (param.m_bRangeSet != 0) {
        std::ranges::transform(param.m_fRange, state.range.emplace().begin(), NumberIn);
    }
    if (param.m_bBoolValueSet != 0) {
        state.flags = std::to_array(param.m_nBoolValue);
    }
    for (INT_PTR i = 0; i < param.m_arChoice.GetSize(); ++i) {
        state.choices->push_back(param.m_arChoice[i]);
    }
    if (const auto* pOutput = dynamic_cast<const SQORNodeOutput*>(&param)) {
        state.extra = pOutput->m_nExtra;
    }
    return state;
}

ParamCodes CodesFor(const ParamValue& value) {
    return std::holds_alternative<CString>(value) ? PARAM_STRING
           : std::holds_alternative<float>(value) ? PARAM_FLOAT
                                                  : PARAM_INTEGER;
}

VEKParam& FindOrAdd(VEKParamGroupList& lstOwn, unsigned nId, ParamCodes codes) {
    if (VEKParam* pParam = FindParam(lstOwn, MakeParamGuid(nId))) {
        return *pParam;
    }
    if (lstOwn.IsEmpty()) {
        Refuse("saved", "the node has no parameter group that could hold parameter " + std::to_string(nId));
    }
    auto pParam = std::make_unique<VEKParam>(nId, CString(), CString(), codes.m_nType, codes.m_nControl);
    lstOwn.GetHead()->m_lstParam.AddTail(pParam.get());
    return *pParam.release();
}

/// Set a saved value; for a float parameter a whole number becomes a float.
void SetSavedValue(VEKParam& param, const ParamValue& value) {
    if (const auto* pText = std::get_if<CString>(&value)) {
        param.m_strValue = *pText;
    } else if (const auto* pNumber = std::get_if<float>(&value)) {
        param.m_fValue = *pNumber;
    } else if (KindOf(param) == EPinKind::Float) {
        param.m_fValue = static_cast<float>(std::get<int>(value));
    } else {
        param.m_nValue = std::get<int>(value);
    }
}

} // namespace

void CloneGroups(const VEKParamGroupList& lstFrom, VEKParamGroupList& lstTo) {
    for (POSITION pos = lstFrom.GetHeadPosition(); pos != nullptr;) {
        const VEKParamGroup* pFrom = lstFrom.GetNext(pos);
        auto pGroup = std::make_unique<VEKParamGroup>();
        pGroup->m_guid = pFrom->m_guid;
        pGroup->m_strName = pFrom->m_strName;
        pGroup->m_strDisplay = pFrom->m_strDisplay;
        for (POSITION posParam = pFrom->m_lstParam.GetHeadPosition(); posParam != nullptr;) {
            pGroup->m_lstParam.AddTail(pFrom->m_lstParam.GetNext(posParam)->Clone());
        }
        lstTo.AddTail(pGroup.release());
    }
}

std::unique_ptr<VEKParam> TakeParam(VEKParamGroupList& lstGroup, unsigned nId) {
    for (POSITION pos = lstGroup.GetHeadPosition(); pos != nullptr;) {
        if (auto pParam = Take<VEKParam>(lstGroup.GetNext(pos)->m_lstParam, nId)) {
            return pParam;
        }
    }
    return nullptr;
}

std::vector<SGroupState> StateOf(const VEKParamGroupList& lstGroup) {
    std::vector<SGroupState> groups;
    for (POSITION pos = lstGroup.GetHeadPosition(); pos != nullptr;) {
        const VEKParamGroup& group = *lstGroup.GetNext(pos);
        SGroupState& state = groups.emplace_back();
        state.nId = static_cast<unsigned>(group.m_guid.Data1);
        state.name = group.m_strName;
        state.display = group.m_strDisplay;
        for (POSITION posParam = group.m_lstParam.GetHeadPosition(); posParam != nullptr;) {
            state.params.push_back(StateOf(*group.m_lstParam.GetNext(posParam)));
        }
    }
    return groups;
}

SValues ValuesOf(const VEKParam& param) {
    return {param.m_nValue, param.m_fValue, param.m_strValue, {}};
}

void RestoreGroups(VEKParamGroupList& lstGroup, const std::vector<SGroupState>& groups, bool bOutputs) {
    SOwnedGroups known(lstGroup);
    for (const SGroupState& state : groups) {
        auto pKnownGroup = Take<VEKParamGroup>(known.lstGroup, state.nId);
        auto pGroup = std::make_unique<VEKParamGroup>();
        pGroup->m_guid = MakeParamGuid(state.nId);
        pGroup->m_strName = pKnownGroup ? pKnownGroup->m_strName : state.name.value_or(CString());
        pGroup->m_strDisplay = pKnownGroup ? pKnownGroup->m_strDisplay : state.display.value_or(CString());
        for (const SParamState& param : state.params) {
            auto pParam = pKnownGroup ? Take<VEKParam>(pKnownGroup->m_lstParam, param.nId) : nullptr;
            if (pParam == nullptr) {
                pParam = TakeParam(known.lstGroup, param.nId);
            }
            if (pParam == nullptr) {
                pParam = MakeParam(param, bOutputs);
            }
            ApplyValues(*pParam, param);
            pGroup->m_lstParam.AddTail(pParam.release());
        }
        lstGroup.AddTail(pGroup.release());
    }
}

void ChangeGroups(VEKParamGroupList& lstGroup, const std::vector<SGroupState>& from, const std::vector<SGroupState>& to,
                  bool bOutputs) {
    if (from == to) {
        return;
    }
    std::map<unsigned, const SParamState*> were;
    for (const SGroupState& group : from) {
        for (const SParamState& param : group.params) {
            were.emplace(param.nId, &param);
        }
    }
    std::vector<SGroupState> groups = to;
    for (SGroupState& group : groups) {
        for (SParamState& param : group.params) {
            const auto was = were.find(param.nId);
            if (was != were.end() && *was->second == param) {
                param = StateOf(*FindParam(lstGroup, MakeParamGuid(param.nId)));
            }
        }
    }
    RestoreGroups(lstGroup, groups, bOutputs);
}

void ApplySavedSet(const SSavedSet& saved, VEKParamGroupList& lstOwn) {
    for (const auto& [nId, value] : saved.values) {
        SetSavedValue(FindOrAdd(lstOwn, nId, CodesFor(value)), value);
    }
    for (const unsigned nId : saved.drop) {
        if (TakeParam(lstOwn, nId) == nullptr) {
            Refuse("saved.drop", "the node has no parameter " + std::to_string(nId));
        }
    }
    for (const auto& [nId, bAvailable] : saved.available) {
        FindOrAdd(lstOwn, nId, PARAM_INTEGER).m_bAvailable = bAvailable;
    }
    for (const unsigned nId : saved.emptyChoices) {
        VEKParam* pParam = FindParam(lstOwn, MakeParamGuid(nId));
        if (pParam == nullptr) {
            Refuse("saved.choices", "the node has no parameter " + std::to_string(nId));
        }
        pParam->m_arChoice.RemoveAll();
    }
    if (!saved.bGroups) {
        SOwnedGroups{lstOwn};
    }
}
