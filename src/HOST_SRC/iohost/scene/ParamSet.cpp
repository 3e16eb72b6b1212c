#include "scene/ParamSet.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include "HostSetup.h"
#include "host/HostRender.h"

namespace {

std::unique_ptr<VEKParamGroup> TakeGroup(VEKParamGroupList& lstGroup, unsigned nId) {
    for (POSITION pos = lstGroup.GetHeadPosition(); pos != nullptr;) {
        const POSITION posGroup = pos;
        VEKParamGroup* pGroup = lstGroup.GetNext(pos);
        if (IsEqualGUID(pGroup->m_guid, MakeParamGuid(nId))) {
            lstGroup.RemoveAt(posGroup);
            return std::unique_ptr<VEKParamGroup>(pGroup);
        }
    }
    return nullptr;
}

std::unique_ptr<VEKParam> TakeParam(VEKParamGroup& group, unsigned nId) {
    for (POSITION pos = group.m_lstParam.GetHeadPosition(); pos != nullptr;) {
        const POSITION posParam = pos;
        VEKParam* pParam = group.m_lstParam.GetNext(pos);
        if (IsEqualGUID(pParam->m_guid, MakeParamGuid(nId))) {
            group.m_lstParam.RemoveAt(posParam);
            return std::unique_ptr<VEKParam>(pParam);
        }
    }
    return nullptr;
}

CString OptionalText(const CFields& fields, const char* pszName) {
    return fields.Has(pszName) ? FromUtf8(fields.Text(pszName)) : CString();
}

/// Infinite and undefined numbers are null in JSON.
float FloatOrNull(const Json& value, const std::string& strPath) {
    return value.is_null() ? std::numeric_limits<float>::quiet_NaN() : ReadFloat(value, strPath);
}

/// A list of four numbers; false when it is missing or null.
template <typename T, typename Read>
bool ReadFour(const CFields& fields, const char* pszName, T (&numbers)[4], Read read) {
    const Json* pList = fields.Find(pszName);
    if (pList == nullptr || pList->is_null()) {
        return false;
    }
    if (fields.Array(pszName).size() != std::size(numbers)) {
        Refuse(fields.Path(pszName), "must hold four numbers");
    }
    std::ranges::transform(*pList, numbers, [&](const Json& number) { return read(number, fields.Path(pszName)); });
    return true;
}

/// A parameter that the node doesn't make: older sets may hold such.
std::unique_ptr<VEKParam> MakeParam(const CFields& fields, bool bOutput) {
    const unsigned nId = fields.Unsigned("id");
    const ParamCodes codes = bOutput ? PARAM_EVENT : PARAM_INTEGER;
    const int nType = fields.Has("type") ? fields.Int("type") : codes.m_nType;
    const int nControl = fields.Has("control") ? fields.Int("control") : codes.m_nControl;
    const CString strName = OptionalText(fields, "name");
    const CString strDisplay = OptionalText(fields, "display");
    std::unique_ptr<VEKParam> pParam;
    if (bOutput) {
        auto pOutput = std::make_unique<SQORNodeOutput>(nId, strName, strDisplay, nType, nControl);
        pOutput->m_nExtra = 0;
        pParam = std::move(pOutput);
    } else {
        pParam = std::make_unique<VEKParam>(nId, strName, strDisplay, nType, nControl);
    }
    if (float fRange[4]; ReadFour(fields, "range", fRange, FloatOrNull)) {
        std::ranges::copy(fRange, pParam->m_fRange);
        pParam->m_bRangeSet = 1;
    }
    if (int nFlags[4]; ReadFour(fields, "flags", nFlags, ReadInt)) {
        SetParamBoolValue(pParam.get(), nFlags[0], nFlags[1], nFlags[2], nFlags[3]);
    }
    return pParam;
}

void ApplyValues(VEKParam& param, const CFields& fields) {
    if (fields.Has("int")) {
        param.m_nValue = fields.Int("int");
    }
    if (const Json* pFloat = fields.Find("float")) {
        param.m_fValue = FloatOrNull(*pFloat, fields.Path("float"));
    }
    if (fields.Has("string")) {
        param.m_strValue = FromUtf8(fields.Text("string"));
    }
    if (const Json* pChoices = fields.OptionalArray("choices")) {
        param.m_arChoice.RemoveAll();
        for (const Json& choice : *pChoices) {
            param.m_arChoice.Add(FromUtf8(ReadText(choice, fields.Path("choices"))));
        }
    }
    if (fields.Has("available")) {
        param.m_bAvailable = fields.Int("available");
    }
}

std::string ElementPath(const std::string& strPath, size_t nIndex) {
    return strPath + "[" + std::to_string(nIndex) + "].";
}

} // namespace

void CParamSet::Swap(VEKParamGroupList& lstGroup) {
    VEKParamGroupList lstMine;
    lstMine.AddTail(&m_lstGroup);
    m_lstGroup.RemoveAll();
    m_lstGroup.AddTail(&lstGroup);
    lstGroup.RemoveAll();
    lstGroup.AddTail(&lstMine);
}

void CParamSet::DeleteAll() {
    while (!m_lstGroup.IsEmpty()) {
        delete m_lstGroup.RemoveHead();
    }
}

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
        if (auto pParam = TakeParam(*lstGroup.GetNext(pos), nId)) {
            return pParam;
        }
    }
    return nullptr;
}

void RestoreGroups(VEKParamGroupList& lstGroup, const Json& groups, const std::string& strPath, bool bOutputs) {
    if (!groups.is_array()) {
        Refuse(strPath, "must be a list");
    }
    // Work on a copy, so that a refusal in the middle leaves the list as it was.
    CParamSet known;
    CloneGroups(lstGroup, known.Groups());
    CParamSet restored;
    for (size_t nGroup = 0; nGroup < groups.size(); ++nGroup) {
        const CFields groupFields(groups[nGroup], ElementPath(strPath, nGroup));
        const unsigned nGroupId = groupFields.Unsigned("id");
        auto pKnownGroup = TakeGroup(known.Groups(), nGroupId);
        auto pGroup = std::make_unique<VEKParamGroup>();
        pGroup->m_guid = MakeParamGuid(nGroupId);
        pGroup->m_strName = pKnownGroup ? pKnownGroup->m_strName : OptionalText(groupFields, "name");
        pGroup->m_strDisplay = pKnownGroup ? pKnownGroup->m_strDisplay : OptionalText(groupFields, "display");
        const Json& params = groupFields.Array("params");
        for (size_t nParam = 0; nParam < params.size(); ++nParam) {
            const CFields fields(params[nParam], ElementPath(groupFields.Path("params"), nParam));
            const unsigned nId = fields.Unsigned("id");
            auto pParam = pKnownGroup ? TakeParam(*pKnownGroup, nId) : nullptr;
            if (pParam == nullptr) {
                pParam = TakeParam(known.Groups(), nId);
            }
            if (pParam == nullptr) {
                pParam = MakeParam(fields, bOutputs);
            }
            ApplyValues(*pParam, fields);
            pGroup->m_lstParam.AddTail(pParam.release());
        }
        restored.Groups().AddTail(pGroup.release());
    }
    restored.Swap(lstGroup);
}
