#include "nodes/network/NetParameterReceiveNode.h"

#include "host/NodeTypeGuid.h"
#include "nodes/shared/NodeSupport.h"
#include "nodes/shared/SharedRows.h"

namespace {

enum { INPUT_GROUP_NAME = 502, INPUT_KEY_NAME = 503, INPUT_KEY_NUMBER = 504 };
enum { OUTPUT_KEY_VALUE = 552, OUTPUT_HELP_PARAMETER = 553, OUTPUT_EVENT = 554 };

constexpr int VERSION_CURRENT = 3;

/// Inputs that parameter sets before the current version may still hold.
constexpr unsigned FORMER_INPUTS[] = {505, 506};

constexpr ParamRow INPUTS[] = {
    VersionRow(VERSION_CURRENT),
    StringRow(INPUT_GROUP_NAME, TEXT_GROUP_NAME),
    StringRow(INPUT_KEY_NAME, TEXT_KEY_NAME),
    KeyNumberRow(INPUT_KEY_NUMBER),
};

constexpr ParamRow OUTPUTS[] = {
    StringRow(OUTPUT_KEY_VALUE, TEXT_KEY_VALUE),
    StringRow(OUTPUT_HELP_PARAMETER, TEXT_HELP_PARAMETER),
    EventRow(OUTPUT_EVENT, L"Event", L"IO_PROCESS_NETRECEIVE_NETTRIGGER"),
};

constexpr GroupRow OUTPUT_GROUPS[] = {{551, L"Outputs", L"TOUCH_CONTROL_OUTPUTS", OUTPUTS}};

/// The record that an event carries; null for any other event.
CQORPanelRemoteCtrlData* RemoteControlOf(const SIOEventRecord& record) {
    const bool bNetwork = DeviceOf(record) == DEVICE_NETWORK || DeviceOf(record) == DEVICE_NETWORK_CONTROL;
    if (!bNetwork || EventOf(record) != EVENT_REMOTE_CONTROL || PayloadOf(record) == nullptr) {
        return nullptr;
    }
    // The payload points at the record's second base; the cast steps back to the whole record.
    return static_cast<CQORPanelRemoteCtrlData*>(static_cast<CQORIOAttachedData*>(PayloadOf(record)));
}

} // namespace

const NodeType CNetParameterReceiveIOProcess::TYPE{
    GUID_IOPROCESS_NET_PARAMETER_RECEIVE, {501, L"Base param", L"IO_PROCESS_NETRECEIVE", INPUTS}, OUTPUT_GROUPS};

void CNetParameterReceiveIOProcess::InitParam() {
    VEKParam* pVersion = FindOwn(*this, PARAM_VERSION);
    if (pVersion == nullptr || IntegerOf(*pVersion) < VERSION_CURRENT) {
        for (const unsigned nId : FORMER_INPUTS) {
            if (VEKParam* pFormer = FindOwn(*this, nId)) {
                AvailabilityOf(*pFormer) = 0;
            }
        }
    }
    if (pVersion != nullptr) {
        IntegerOf(*pVersion) = VERSION_CURRENT;
    }
}

int CNetParameterReceiveIOProcess::ProcessNode(SGraphNode* pGraphNode) {
    m_pGraphNode = pGraphNode;
    return pGraphNode != nullptr && ClipOf(*this) != nullptr ? 1 : 0;
}

int CNetParameterReceiveIOProcess::DevIOEventOccurred(EventRecordPtr pRecord) try {
    if (!CheckRecord(pRecord, *this, m_pGraphNode)) {
        return 0;
    }
    CQORPanelRemoteCtrlData* pRemote = RemoteControlOf(*pRecord);
    if (pRemote == nullptr || !IsSameText(ClipNameOf(*pRemote), NameOf(*ClipOf(*this)))) {
        return 0;
    }
    const auto [pGroupName, pKeyName, pKeyNumber] =
        FindInputs(*this, *m_pGraphNode, INPUT_GROUP_NAME, INPUT_KEY_NAME, INPUT_KEY_NUMBER);
    if (pGroupName == nullptr || pKeyName == nullptr || pKeyNumber == nullptr) {
        return 0;
    }
    if (!IsSameText(GroupNameOf(*pRemote), TextOf(*pGroupName)) ||
        !IsSameText(KeyNameOf(*pRemote), TextOf(*pKeyName)) || KeyNumberOf(*pRemote) != IntegerOf(*pKeyNumber)) {
        return 0;
    }
    WriteOutput(*m_pGraphNode, OUTPUT_KEY_VALUE, KeyValueOf(*pRemote));
    WriteOutput(*m_pGraphNode, OUTPUT_HELP_PARAMETER, HelpParameterOf(*pRemote));
    WriteNodeLog(LEVEL_INFORMATION, *this, *m_pGraphNode, L"[%s.%s.%s 触发[网络触发]事件]");
    PostGeneralEventMessage(this, ClipOf(*this), nullptr, OUTPUT_EVENT);
    return 1;
} catch (...) {
    return EndException();
}
