#include "nodes/network/BroadcastReceiveNode.h"

#include "host/NodeTypeGuid.h"
#include "nodes/shared/NodeSupport.h"
#include "nodes/shared/SharedRows.h"

namespace {

enum { INPUT_FLAG = 1302 };
enum { OUTPUT_NAME = 1352, OUTPUT_DATA = 1353 };

constexpr ParamRow INPUTS[] = {VersionRow(1), StringRow(INPUT_FLAG, TEXT_FLAG)};

constexpr ParamRow OUTPUTS[] = {StringRow(OUTPUT_NAME, TEXT_BROADCAST_NAME),
                                StringRow(OUTPUT_DATA, TEXT_BROADCAST_DATA)};

constexpr GroupRow OUTPUT_GROUPS[] = {{1351, L"Outputs", L"TOUCH_CONTROL_OUTPUTS", OUTPUTS}};

} // namespace

const NodeType CBroadcastRevIOProcess::TYPE{
    GUID_IOPROCESS_BROADCAST_RECEIVE, {1301, L"Base param", L"IO_PROCESS_BROADCASTREV", INPUTS}, OUTPUT_GROUPS};

int CBroadcastRevIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    m_pGraphNode = pGraphNode;
    if (pGraphNode == nullptr || ClipOf(*this) == nullptr) {
        return 0;
    }
    ReadText(*this, *pGraphNode, INPUT_FLAG, m_strFlag);
    return 1;
} catch (...) {
    return EndException();
}

int CBroadcastRevIOProcess::DevIOEventOccurred(EventRecordPtr pRecord) try {
    if (!CheckRecord(pRecord, *this, m_pGraphNode) || DeviceOf(*pRecord) != DEVICE_NETWORK ||
        EventOf(*pRecord) != EVENT_BROADCAST || PayloadOf(*pRecord) == nullptr) {
        return 0;
    }
    const auto& item = *static_cast<const SBroadcastItem*>(PayloadOf(*pRecord));
    if (!IsSameText(FlagOf(item), m_strFlag)) {
        return 0;
    }
    WriteOutput(*m_pGraphNode, OUTPUT_NAME, NameOf(item));
    WriteOutput(*m_pGraphNode, OUTPUT_DATA, DataOf(item));
    return 1;
} catch (...) {
    return EndException();
}
