#include "host/ParamModel.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

namespace {

template <typename T>
void DeleteAll(CList<T*>& list) {
    while (!list.IsEmpty()) {
        delete list.RemoveHead();
    }
}

} // namespace

VEKParam::VEKParam(unsigned nId, const CString& strName, const CString& strDisplay, int nType, int nControl)
    : m_guid(MakeParamGuid(nId)), m_strName(strName), m_strDisplay(strDisplay), m_nType(nType), m_nControl(nControl) {
    m_szTypeName[0] = 0;
}

VEKParam::VEKParam(const VEKParam& other)
    : m_guid(other.m_guid), m_strName(other.m_strName), m_strDisplay(other.m_strDisplay), m_nType(other.m_nType),
      m_nControl(other.m_nControl), m_bRangeSet(other.m_bRangeSet), m_bBoolValueSet(other.m_bBoolValueSet),
      m_pValue(other.m_pValue), m_fValue(other.m_fValue), m_strValue(other.m_strValue),
      m_bAvailable(other.m_bAvailable) {
    std::copy(std::begin(other.m_fRange), std::end(other.m_fRange), m_fRange);
    std::copy(std::begin(other.m_nBoolValue), std::end(other.m_nBoolValue), m_nBoolValue);
    std::wcscpy(m_szTypeName, other.m_szTypeName);
    m_arChoice.Copy(other.m_arChoice);
}

VEKParam::~VEKParam() = default;

VEKParam* VEKParam::Clone() const {
    return new VEKParam(*this);
}

VEKParamGroup::VEKParamGroup() : m_guid(MakeParamGuid(0)) {}

VEKParamGroup::~VEKParamGroup() {
    DeleteAll(m_lstParam);
}

SGraphNode::SGraphNode() = default;

SGraphNode::~SGraphNode() {
    DeleteAll(m_lstOutputGroup);
    DeleteAll(m_lstInputGroup);
}

void SetParamValue(VEKParam* pParam, float fValue, float fMinimum, float fMaximum, float fStep) {
    const float range[] = {fValue, fMinimum, fMaximum, fStep};
    std::copy(std::begin(range), std::end(range), pParam->m_fRange);
    pParam->m_bRangeSet = 1;
    pParam->m_nValue = static_cast<int>(fValue);
    pParam->m_fValue = fValue;
}

void SetParamBoolValue(VEKParam* pParam, int a, int b, int c, int d) {
    const int flags[] = {a, b, c, d};
    std::copy(std::begin(flags), std::end(flags), pParam->m_nBoolValue);
    pParam->m_bBoolValueSet = 1;
}

VEKParam* FindParam(const VEKParamGroupList& lstGroup, const GUID& guid) {
    for (POSITION pos = lstGroup.GetHeadPosition(); pos != nullptr;) {
        if (VEKParam* pParam = FindParam(lstGroup.GetNext(pos), guid)) {
            return pParam;
        }
    }
    return nullptr;
}

VEKParam* FindParam(const VEKParamGroup* pGroup, const GUID& guid) {
    if (pGroup == nullptr) {
        return nullptr;
    }
    for (POSITION pos = pGroup->m_lstParam.GetHeadPosition(); pos != nullptr;) {
        VEKParam* pParam = pGroup->m_lstParam.GetNext(pos);
        if (IsEqualGUID(pParam->m_guid, guid)) {
            return pParam;
        }
    }
    return nullptr;
}

VEKParamGroup* FindGroup(const VEKParamGroupList& lstGroup, const GUID& guid) {
    for (POSITION pos = lstGroup.GetHeadPosition(); pos != nullptr;) {
        VEKParamGroup* pGroup = lstGroup.GetNext(pos);
        if (IsEqualGUID(pGroup->m_guid, guid)) {
            return pGroup;
        }
    }
    return nullptr;
}
