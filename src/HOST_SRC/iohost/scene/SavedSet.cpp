#include "scene/SavedSet.h"

#include <set>

#include "HostSetup.h"
#include "scene/ParamSet.h"

namespace {

std::vector<unsigned> ReadIds(const CFields& fields, const char* pszName) {
    std::vector<unsigned> ids;
    if (const Json* pList = fields.OptionalArray(pszName)) {
        for (const Json& id : *pList) {
            ids.push_back(ReadUnsigned(id, fields.Path(pszName)));
        }
    }
    return ids;
}

/// The members of an object whose keys are parameter ids.
template <typename Visit>
void ForEachId(const CFields& fields, const char* pszName, Visit visit) {
    const Json* pObject = fields.Find(pszName);
    if (pObject == nullptr) {
        return;
    }
    const std::string strPath = fields.Path(pszName);
    for (const auto& [key, value] : CFields(*pObject, strPath + ".").Object().items()) {
        visit(ReadIdKey(key, strPath), value, strPath + "." + key);
    }
}

Json ReadPins(const Json& pins) {
    Json groups = Json::array();
    for (size_t i = 0; i < pins.size(); ++i) {
        const CFields pin(pins[i], "saved.pins[" + std::to_string(i) + "].");
        Json params = Json::array();
        for (const Json& id : pin.Array("ids")) {
            params.push_back({{"id", ReadUnsigned(id, pin.Path("ids"))}});
        }
        groups.push_back({{"id", pin.Unsigned("group")}, {"name", "Output"}, {"params", std::move(params)}});
    }
    return groups;
}

ParamCodes CodesFor(const Json& value) {
    return value.is_string() ? PARAM_STRING : value.is_number_float() ? PARAM_FLOAT : PARAM_INTEGER;
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

void SetValue(VEKParam& param, const Json& value) {
    const bool bFloat = param.m_nType == PARAM_FLOAT.m_nType && param.m_nControl == PARAM_FLOAT.m_nControl;
    if (value.is_string()) {
        param.m_strValue = FromUtf8(value.get_ref<const std::string&>());
    } else if (bFloat || value.is_number_float()) {
        param.m_fValue = value.get<float>();
    } else {
        param.m_nValue = value.get<int>();
    }
}

/// Refuses what no node fits, so that none is made in vain.
void CheckTaken(const SSavedSet& saved) {
    std::set<unsigned> dropped;
    for (const unsigned nId : saved.arDrop) {
        if (!dropped.insert(nId).second) {
            Refuse("saved.drop", "names parameter " + std::to_string(nId) + " twice");
        }
    }
    for (const auto& [nId, bAvailable] : saved.arAvailable) {
        dropped.erase(nId); // it's made anew
    }
    for (const unsigned nId : saved.arEmptyChoices) {
        if (dropped.contains(nId)) {
            Refuse("saved.choices", "parameter " + std::to_string(nId) + " is dropped");
        }
    }
}

} // namespace

SSavedSet ReadSavedSet(const CFields& saved) {
    SSavedSet set;
    ForEachId(saved, "values", [&](unsigned nId, const Json& value, const std::string& strPath) {
        if (!value.is_string() && !value.is_number()) {
            Refuse(strPath, "must be a number or a string");
        }
        if (value.is_number_float()) {
            ReadFloat(value, strPath);
        } else if (value.is_number()) {
            ReadInt(value, strPath);
        }
        set.arValue.emplace_back(nId, value);
    });
    set.arDrop = ReadIds(saved, "drop");
    ForEachId(saved, "available", [&](unsigned nId, const Json& value, const std::string& strPath) {
        set.arAvailable.emplace_back(nId, ReadInt(value, strPath));
    });
    set.arEmptyChoices = ReadIds(saved, "choices");
    set.bGroups = saved.Bool("groups", true);
    if (const Json* pPins = saved.OptionalArray("pins")) {
        set.pins = ReadPins(*pPins);
    }
    CheckTaken(set);
    return set;
}

void ApplySavedSet(const SSavedSet& saved, VEKParamGroupList& lstOwn) {
    for (const auto& [nId, value] : saved.arValue) {
        SetValue(FindOrAdd(lstOwn, nId, CodesFor(value)), value);
    }
    for (const unsigned nId : saved.arDrop) {
        if (TakeParam(lstOwn, nId) == nullptr) {
            Refuse("saved.drop", "the node has no parameter " + std::to_string(nId));
        }
    }
    for (const auto& [nId, bAvailable] : saved.arAvailable) {
        FindOrAdd(lstOwn, nId, PARAM_INTEGER).m_bAvailable = bAvailable;
    }
    for (const unsigned nId : saved.arEmptyChoices) {
        VEKParam* pParam = FindParam(lstOwn, MakeParamGuid(nId));
        if (pParam == nullptr) {
            Refuse("saved.choices", "the node has no parameter " + std::to_string(nId));
        }
        pParam->m_arChoice.RemoveAll();
    }
    if (!saved.bGroups) {
        CParamSet().Swap(lstOwn);
    }
}
