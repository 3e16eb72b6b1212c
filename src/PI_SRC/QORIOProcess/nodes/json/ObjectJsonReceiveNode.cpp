#include "nodes/json/ObjectJsonReceiveNode.h"

#include "host/NodeTypeGuid.h"
#include "nodes/shared/SharedRows.h"

namespace {

enum { INPUT_CLIP_NAME = 1202, INPUT_OBJECT_NAME = 1203, INPUT_FLAG = 1204 };
enum { OUTPUT_RECEIVE_DATA = 1252, OUTPUT_EVENT = 1253 };

constexpr ParamRow INPUTS[] = {
    VersionRow(2),
    StringRow(INPUT_CLIP_NAME, TEXT_CLIP_NAME),
    StringRow(INPUT_OBJECT_NAME, L"ObjName", L"IO_PROCESS_OBJ_NAME"),
    StringRow(INPUT_FLAG, TEXT_FLAG),
};

constexpr ParamRow OUTPUTS[] = {JsonTextRow(OUTPUT_RECEIVE_DATA), JsonEventRow(OUTPUT_EVENT)};

constexpr GroupRow OUTPUT_GROUPS[] = {{1251, L"Outputs", L"TOUCH_CONTROL_OUTPUTS", OUTPUTS}};

} // namespace

const NodeType CObjJsonReceive::TYPE{
    GUID_IOPROCESS_OBJECT_JSON_RECEIVE, {1201, L"Base param", L"IO_PROCESS_OBJ_JSON_RECEIVE", INPUTS}, OUTPUT_GROUPS};

int CObjJsonReceive::DevIOEventOccurred(EventRecordPtr pRecord) try {
    SGraphNode* pGraphNode = GraphNodeOf(*this);
    if (!CheckRecord(pRecord, *this, pGraphNode) || DeviceOf(*pRecord) != DEVICE_OBJECT_TEXT ||
        PayloadOf(*pRecord) == nullptr) {
        return 0;
    }
    const auto& text = *static_cast<const SObjectTextData*>(PayloadOf(*pRecord));
    // "Flag" must be there, but what it holds decides nothing.
    const auto [pClipName, pObjectName, pFlag] =
        FindInputs(*this, *pGraphNode, INPUT_CLIP_NAME, INPUT_OBJECT_NAME, INPUT_FLAG);
    if (pClipName == nullptr || pObjectName == nullptr || pFlag == nullptr ||
        TextOf(*pClipName).Compare(ClipNameOf(text)) != 0 || TextOf(*pObjectName).Compare(ObjectNameOf(text)) != 0) {
        return 0;
    }
    return Accept(OUTPUT_RECEIVE_DATA, TextOf(text), L"[%s.%s.%s 触发[地图反馈]事件]", OUTPUT_EVENT);
} catch (...) {
    return EndException();
}
