#include "host/NodeTables.h"

#include "host/HostCommon.h"
#include "host/NodeSupport.h"

namespace {

CString DisplayTextOf(const ParamRow& row) {
    const CString strText =
        row.nDisplayText == DisplayText::Literal ? CString(row.pszDisplayKey) : PXLoadString(row.pszDisplayKey);
    return strText + row.pszDisplaySuffix;
}

template <typename Param>
std::unique_ptr<Param> MakeParam(const ParamRow& row) {
    auto pParam =
        std::make_unique<Param>(row.nId, row.pszName, DisplayTextOf(row), row.codes.m_nType, row.codes.m_nControl);
    if (row.range) {
        SetParamValue(pParam.get(), row.range->fValue, row.range->fMinimum, row.range->fMaximum, row.range->fStep);
    }
    if (row.nValue) {
        pParam->m_nValue = *row.nValue;
    }
    if (row.flags) {
        SetParamBoolValue(pParam.get(), row.flags->a, row.flags->b, row.flags->c, row.flags->d);
    }
    if (row.pFillChoices != nullptr) {
        row.pFillChoices(pParam->m_arChoice);
    }
    if (!row.bAvailable) {
        pParam->m_bAvailable = 0;
    }
    return pParam;
}

/// Append to a list of owned pointers; the list owns the element once it is in.
template <typename T>
void AppendOwned(CList<T*>& list, std::unique_ptr<T> pElement) {
    list.AddTail(pElement.get());
    static_cast<void>(pElement.release()); // the list's, now that it has room for it
}

std::unique_ptr<VEKParamGroup> MakeGroup(const GroupRow& group, std::unique_ptr<VEKParam> (*pMake)(const ParamRow&)) {
    auto pGroup = std::make_unique<VEKParamGroup>();
    pGroup->m_guid = MakeParamGuid(group.nId);
    pGroup->m_strName = group.pszName;
    pGroup->m_strDisplay = PXLoadString(group.pszDisplayKey);
    for (const ParamRow& row : group.params) {
        AppendOwned(pGroup->m_lstParam, pMake(row));
    }
    return pGroup;
}

} // namespace

void FillChoicesOnce(VEKParam* pParam, FillChoices* pFillChoices) {
    if (pParam == nullptr || !pParam->m_arChoice.IsEmpty()) {
        return;
    }
    CStringArray arChoice; // a parameter with some of the labels would be taken for one that has them
    pFillChoices(arChoice);
    pParam->m_arChoice.Copy(arChoice);
}

std::unique_ptr<VEKParam> MakeInput(const ParamRow& row) {
    return MakeParam<VEKParam>(row);
}

std::unique_ptr<VEKParam> MakeOutput(const ParamRow& row) {
    auto pOutput = MakeParam<SQORNodeOutput>(row);
    pOutput->m_nExtra = 0;
    return pOutput;
}

std::unique_ptr<VEKParamGroup> MakeOutputGroup(const GroupRow& group) {
    return MakeGroup(group, MakeOutput);
}

void AppendInputGroup(VEKParamGroupList& lstGroup, const GroupRow& group) {
    AppendOwned(lstGroup, MakeGroup(group, MakeInput));
}

void AppendOutputGroupsOnce(SGraphNode* pGraphNode, std::span<const GroupRow> groups) {
    if (pGraphNode == nullptr || !pGraphNode->m_lstOutputGroup.IsEmpty()) {
        return;
    }
    try {
        for (const GroupRow& group : groups) {
            AppendOwned(pGraphNode->m_lstOutputGroup, MakeOutputGroup(group));
        }
    } catch (...) {
        while (!pGraphNode->m_lstOutputGroup.IsEmpty()) {
            delete pGraphNode->m_lstOutputGroup.RemoveHead();
        }
        RejectFailure();
    }
}
