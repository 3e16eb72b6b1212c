#include "nodes/network/BroadcastReceiveNode.h"

#include "host/NodeSupport.h"
#include "host/NodeTables.h"
#include "host/NodeTypeGuid.h"

namespace {

enum : unsigned {
    INPUT_GROUP = 1301,
    INPUT_FLAG = 1302,

    OUTPUT_GROUP = 1351,
    OUTPUT_NAME = 1352,
    OUTPUT_DATA = 1353,
};

constexpr ParamRow INPUTS[] = {
    VersionRow(1),
    StringRow(INPUT_FLAG, L"Flag", L"IO_PROCESS_BROADCAST_FLAG"),
};

constexpr GroupRow INPUT_GROUP_ROW{
    .nId = INPUT_GROUP, .pszName = L"Base param", .pszDisplayKey = L"IO_PROCESS_BROADCASTREV", .params = INPUTS};

constexpr ParamRow OUTPUTS[] = {
    StringRow(OUTPUT_NAME, L"Name", L"IO_PROCESS_BROADCAST_NAME"),
    StringRow(OUTPUT_DATA, L"Data", L"IO_PROCESS_BROADCAST_VALUE"),
};

constexpr GroupRow OUTPUT_GROUPS[] = {
    {.nId = OUTPUT_GROUP, .pszName = L"Outputs", .pszDisplayKey = L"TOUCH_CONTROL_OUTPUTS", .params = OUTPUTS},
};

} // namespace

CBroadcastRevIOProcess::CBroadcastRevIOProcess() {
    m_nKindCode = KIND_IO_PROCESS;
    m_guidType = GUID_IOPROCESS_BROADCAST_RECEIVE;
    AppendInputGroup(m_lstParamGroup, INPUT_GROUP_ROW);
}

CBroadcastRevIOProcess::~CBroadcastRevIOProcess() = default;

void CBroadcastRevIOProcess::GetNodeOutput(SGraphNode* pGraphNode) {
    AppendOutputGroupsOnce(pGraphNode, OUTPUT_GROUPS);
}

int CBroadcastRevIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    m_pGraphNode = pGraphNode;
    if (pGraphNode == nullptr || m_pOwnerClip == nullptr) {
        return 0;
    }
    if (const VEKParam* pFlag = FindInput(*this, *pGraphNode, INPUT_FLAG)) {
        AssignIfDifferent(m_strFlag, pFlag->m_strValue);
    }
    return 1;
} catch (...) {
    return RejectFailure();
}

int CBroadcastRevIOProcess::DevIOEventOccurred(const SIOEventRecord* pRecord) try {
    if (m_pOwnerClip == nullptr || m_pGraphNode == nullptr) {
        return 0;
    }
    if (pRecord == nullptr) {
        return RejectNullRecord(*this, *m_pGraphNode);
    }
    if (pRecord->m_nDevice != DEVICE_NETWORK || pRecord->m_nEvent != EVENT_BROADCAST ||
        pRecord->m_pPayload == nullptr) {
        return 0;
    }
    const auto& item = *static_cast<const SBroadcastItem*>(pRecord->m_pPayload);
    if (item.m_strFlag != m_strFlag) {
        return 0;
    }
    WriteOutput(*m_pGraphNode, OUTPUT_NAME, &VEKParam::m_strValue, item.m_strName);
    WriteOutput(*m_pGraphNode, OUTPUT_DATA, &VEKParam::m_strValue, item.m_strData);
    return 1;
} catch (...) {
    return RejectFailure();
}
