#include "nodes/network/NetParameterReceiveNode.h"

#include "host/NodeSupport.h"
#include "host/NodeTables.h"
#include "host/NodeTypeGuid.h"

namespace {

enum : unsigned {
    INPUT_GROUP = 501,
    INPUT_GROUP_NAME = 502,
    INPUT_KEY_NAME = 503,
    INPUT_KEY_NUMBER = 504,

    OUTPUT_GROUP = 551,
    OUTPUT_KEY_VALUE = 552,
    OUTPUT_HELP_PARAMETER = 553,
    OUTPUT_EVENT = 554,
};

constexpr int VERSION_CURRENT = 3;

/// Inputs that parameter sets before the current version may still hold.
constexpr unsigned FORMER_INPUTS[] = {505, 506};

constexpr ParamRow INPUTS[] = {
    VersionRow(VERSION_CURRENT),
    StringRow(INPUT_GROUP_NAME, L"GroupName", L"IO_PROCESS_NETSEND_GROUPNAME"),
    StringRow(INPUT_KEY_NAME, L"KeyName", L"IO_PROCESS_NETSEND_KEYNAME"),
    {.nId = INPUT_KEY_NUMBER,
     .pszName = L"KeyNumber",
     .pszDisplayKey = L"IO_PROCESS_NETSEND_KEYNUMBER",
     .codes = PARAM_INTEGER,
     .range = ParamRange{0, 0, 1e9f, 1},
     .flags = FLAGS_ORDINARY,
     .nValue = 0},
};

constexpr GroupRow INPUT_GROUP_ROW{
    .nId = INPUT_GROUP, .pszName = L"Base param", .pszDisplayKey = L"IO_PROCESS_NETRECEIVE", .params = INPUTS};

constexpr ParamRow OUTPUTS[] = {
    StringRow(OUTPUT_KEY_VALUE, L"KeyValue", L"IO_PROCESS_NETSEND_KEYVALUE"),
    StringRow(OUTPUT_HELP_PARAMETER, L"HelpParameter", L"IO_PROCESS_NETSEND_HELPPARAMETER"),
    EventRow(OUTPUT_EVENT, L"Event", L"IO_PROCESS_NETRECEIVE_NETTRIGGER"),
};

constexpr GroupRow OUTPUT_GROUPS[] = {
    {.nId = OUTPUT_GROUP, .pszName = L"Outputs", .pszDisplayKey = L"TOUCH_CONTROL_OUTPUTS", .params = OUTPUTS},
};

/// The record that an event carries; null for any other event.
const CQORPanelRemoteCtrlData* RemoteControlOf(const SIOEventRecord& record) {
    const bool bNetwork = record.m_nDevice == DEVICE_NETWORK || record.m_nDevice == DEVICE_NETWORK_CONTROL;
    if (!bNetwork || record.m_nEvent != EVENT_REMOTE_CONTROL || record.m_pPayload == nullptr) {
        return nullptr;
    }
    // The payload is one base of the record; the record begins before it.
    return static_cast<const CQORPanelRemoteCtrlData*>(static_cast<const CQORIOAttachedData*>(record.m_pPayload));
}

} // namespace

CNetParameterReceiveIOProcess::CNetParameterReceiveIOProcess() {
    m_nKindCode = KIND_IO_PROCESS;
    m_guidType = GUID_IOPROCESS_NET_PARAMETER_RECEIVE;
    AppendInputGroup(m_lstParamGroup, INPUT_GROUP_ROW);
}

CNetParameterReceiveIOProcess::~CNetParameterReceiveIOProcess() = default;

void CNetParameterReceiveIOProcess::InitParam() try {
    VEKParam* pVersion = FindParam(m_lstParamGroup, MakeParamGuid(PARAM_VERSION));
    if (pVersion == nullptr || pVersion->m_nValue < VERSION_CURRENT) {
        for (const unsigned nId : FORMER_INPUTS) {
            if (VEKParam* pFormer = FindParam(m_lstParamGroup, MakeParamGuid(nId))) {
                pFormer->m_bAvailable = 0;
            }
        }
    }
    if (pVersion != nullptr) {
        pVersion->m_nValue = VERSION_CURRENT;
    }
} catch (...) {
    RejectFailure();
}

void CNetParameterReceiveIOProcess::GetNodeOutput(SGraphNode* pGraphNode) {
    AppendOutputGroupsOnce(pGraphNode, OUTPUT_GROUPS);
}

int CNetParameterReceiveIOProcess::ProcessNode(SGraphNode* pGraphNode) {
    m_pGraphNode = pGraphNode;
    return pGraphNode != nullptr && m_pOwnerClip != nullptr ? 1 : 0;
}

int CNetParameterReceiveIOProcess::DevIOEventOccurred(const SIOEventRecord* pRecord) try {
    if (m_pOwnerClip == nullptr || m_pGraphNode == nullptr) {
        return 0;
    }
    if (pRecord == nullptr) {
        return RejectNullRecord(*this, *m_pGraphNode);
    }
    const CQORPanelRemoteCtrlData* pRemote = RemoteControlOf(*pRecord);
    if (pRemote == nullptr || pRemote->m_strClipName != m_pOwnerClip->m_strName) {
        return 0;
    }
    const VEKParam* pGroupName = FindInput(*this, *m_pGraphNode, INPUT_GROUP_NAME);
    const VEKParam* pKeyName = FindInput(*this, *m_pGraphNode, INPUT_KEY_NAME);
    const VEKParam* pKeyNumber = FindInput(*this, *m_pGraphNode, INPUT_KEY_NUMBER);
    if (pGroupName == nullptr || pKeyName == nullptr || pKeyNumber == nullptr) {
        return 0;
    }
    if (pRemote->m_strGroupName != pGroupName->m_strValue || pRemote->m_strKeyName != pKeyName->m_strValue ||
        pRemote->m_nKeyNumber != pKeyNumber->m_nValue) {
        return 0;
    }
    WriteOutput(*m_pGraphNode, OUTPUT_KEY_VALUE, &VEKParam::m_strValue, pRemote->m_strKeyValue);
    WriteOutput(*m_pGraphNode, OUTPUT_HELP_PARAMETER, &VEKParam::m_strValue, pRemote->m_strHelpParameter);
    WriteNodeLog(LOG_INFORMATION, *this, *m_pGraphNode, L"[%s.%s.%s 触发[网络触发]事件]");
    PostGeneralEventMessage(this, m_pOwnerClip, nullptr, static_cast<int>(OUTPUT_EVENT));
    return 1;
} catch (...) {
    return RejectFailure();
}
