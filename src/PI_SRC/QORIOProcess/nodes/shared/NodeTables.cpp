#include "nodes/shared/NodeTables.h"

#include "nodes/shared/NodeSupport.h"

namespace {

CString DisplayText(const ParamRow& row) {
    return (row.pszDisplayKey != nullptr ? LoadText(row.pszDisplayKey) : CString(row.pszName)) + row.pszDisplaySuffix;
}

void Fill(VEKParam& param, const ParamRow& row) {
    if (row.range) {
        SetParamValue(&param, row.range->fValue, row.range->fMinimum, row.range->fMaximum, row.range->fStep);
    }
    if (row.nValue) {
        IntegerOf(param) = *row.nValue;
    }
    if (row.fValue) {
        FloatOf(param) = *row.fValue;
    }
    if (row.flags) {
        SetParamBoolValue(&param, row.flags->a, row.flags->b, row.flags->c, row.flags->d);
    }
    if (row.pFillChoices != nullptr) {
        row.pFillChoices(ChoicesOf(param));
    }
    if (!row.bAvailable) {
        AvailabilityOf(param) = 0;
    }
}

std::unique_ptr<VEKParamGroup> MakeGroup(const GroupRow& group, std::unique_ptr<VEKParam> (*pMake)(const ParamRow&)) {
    auto pGroup = std::make_unique<VEKParamGroup>();
    GuidOf(*pGroup) = MakeParamGuid(group.nId);
    NameOf(*pGroup) = group.pszName;
    DisplayTextOf(*pGroup) = LoadText(group.pszDisplayKey);
    for (const ParamRow& row : group.params) {
        AppendOwned(ParamsOf(*pGroup), pMake(row));
    }
    return pGroup;
}

} // namespace

void InitNode(VEKProperty& node, const GUID& guidType, const GroupRow& inputs) {
    KindCodeOf(node) = KIND_IO_PROCESS;
    TypeOf(node) = guidType;
    AppendOwned(GroupsOf(node), MakeGroup(inputs, MakeInput));
}

std::unique_ptr<VEKParam> MakeInput(const ParamRow& row) {
    auto pInput = NewParam(row.nId, row.pszName, DisplayText(row), row.codes);
    Fill(*pInput, row);
    return pInput;
}

std::unique_ptr<VEKParam> MakeOutput(const ParamRow& row) {
    auto pOutput = NewOutput(row.nId, row.pszName, DisplayText(row), row.codes);
    ExtraWordOf(*pOutput) = 0; // the host's constructor leaves it unset
    Fill(*pOutput, row);
    return pOutput;
}

std::unique_ptr<VEKParamGroup> MakeOutputGroup(const GroupRow& group) {
    return MakeGroup(group, MakeOutput);
}

void AppendOutputGroupsOnce(SGraphNode* pGraphNode, std::span<const GroupRow> groups) try {
    if (pGraphNode == nullptr || !OutputsOf(*pGraphNode).IsEmpty()) {
        return;
    }
    for (const GroupRow& group : groups) {
        AppendOwned(OutputsOf(*pGraphNode), MakeOutputGroup(group));
    }
} catch (...) {
    EndException();
}

void FillChoicesOnce(VEKParam* pParam, FillChoices* pFillChoices) {
    if (pParam != nullptr && ChoicesOf(*pParam).IsEmpty()) {
        pFillChoices(ChoicesOf(*pParam));
    }
}
