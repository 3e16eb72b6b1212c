#include "nodes/json/ObjectJsonReceiveNode.h"

#include "host/NodeTables.h"
#include "host/NodeTypeGuid.h"
#include "nodes/json/JsonNodes.h"

namespace {

enum : unsigned {
    INPUT_GROUP = 1201,
    INPUT_CLIP_NAME = 1202,
    INPUT_OBJECT_NAME = 1203,
    INPUT_FLAG = 1204,

    OUTPUT_GROUP = 1251,
    OUTPUT_RECEIVE_DATA = 1252,
    OUTPUT_EVENT = 1253,
};

constexpr ParamRow INPUTS[] = {
    VersionRow(2),
    StringRow(INPUT_CLIP_NAME, L"ClipName", L"IO_PROCESS_NETSEND_CLIPNAME"),
    StringRow(INPUT_OBJECT_NAME, L"ObjName", L"IO_PROCESS_OBJ_NAME"),
    StringRow(INPUT_FLAG, L"Flag", L"IO_PROCESS_BROADCAST_FLAG"),
};

constexpr GroupRow INPUT_GROUP_ROW{
    .nId = INPUT_GROUP, .pszName = L"Base param", .pszDisplayKey = L"IO_PROCESS_OBJ_JSON_RECEIVE", .params = INPUTS};

constexpr ParamRow OUTPUTS[] = {
    StringRow(OUTPUT_RECEIVE_DATA, L"ReceiveData", L"LOGIC_CAL_DATASEPARATE_DATA"),
    EventRow(OUTPUT_EVENT, L"Event", L"IO_PROCESS_RECEIVE_JSON"),
};

constexpr GroupRow OUTPUT_GROUPS[] = {
    {.nId = OUTPUT_GROUP, .pszName = L"Outputs", .pszDisplayKey = L"TOUCH_CONTROL_OUTPUTS", .params = OUTPUTS},
};

} // namespace

CObjJsonReceive::CObjJsonReceive() {
    m_nKindCode = KIND_IO_PROCESS;
    m_guidType = GUID_IOPROCESS_OBJECT_JSON_RECEIVE;
    AppendInputGroup(m_lstParamGroup, INPUT_GROUP_ROW);
}

CObjJsonReceive::~CObjJsonReceive() = default;

void CObjJsonReceive::InitParam() {
    CheckJsonParams(*this);
}

void CObjJsonReceive::GetNodeOutput(SGraphNode* pGraphNode) {
    AppendOutputGroupsOnce(pGraphNode, OUTPUT_GROUPS);
}

int CObjJsonReceive::ProcessNode(SGraphNode* pGraphNode) {
    return ProcessJsonNode(*this, pGraphNode);
}

int CObjJsonReceive::DevIOEventOccurred(const SIOEventRecord* pRecord) try {
    if (m_pOwnerClip == nullptr || m_pBaseGraphNode == nullptr) {
        return 0;
    }
    if (pRecord == nullptr) {
        return RejectNullRecord(*this, *m_pBaseGraphNode);
    }
    if (pRecord->m_nDevice != DEVICE_OBJECT_TEXT || pRecord->m_pPayload == nullptr) {
        return 0;
    }
    const auto& text = *static_cast<const SObjectTextData*>(pRecord->m_pPayload);
    const VEKParam* pClipName = FindInput(*this, *m_pBaseGraphNode, INPUT_CLIP_NAME);
    const VEKParam* pObjectName = FindInput(*this, *m_pBaseGraphNode, INPUT_OBJECT_NAME);
    // "Flag" must be there, but what it holds decides nothing.
    const VEKParam* pFlag = FindInput(*this, *m_pBaseGraphNode, INPUT_FLAG);
    if (pClipName == nullptr || pObjectName == nullptr || pFlag == nullptr) {
        return 0;
    }
    if (pClipName->m_strValue != text.m_strClipName || pObjectName->m_strValue != text.m_strObjectName) {
        return 0;
    }
    return AcceptJsonText(*this, {OUTPUT_RECEIVE_DATA, OUTPUT_EVENT}, text.m_strText, L"[%s.%s.%s 触发[地图反馈]事件]");
} catch (...) {
    return RejectFailure();
}
