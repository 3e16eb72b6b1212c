#include "nodes/input/KeyboardNode.h"

#include "host/NodeTypeGuid.h"
#include "nodes/shared/NodeSupport.h"
#include "nodes/shared/SharedRows.h"

namespace {

enum { OUTPUT_KEY_DOWN = 152, OUTPUT_KEY_UP = 153, OUTPUT_TEXT = 154 };

constexpr ParamRow INPUTS[] = {ENABLE_ROW};

constexpr ParamRow OUTPUTS[] = {
    EventRow(OUTPUT_KEY_DOWN, L"KeyDown", L"IO_PROCESS_KEYBOARD_KEYDOWN"),
    EventRow(OUTPUT_KEY_UP, L"KeyUp", L"IO_PROCESS_KEYBOARD_KEYUP"),
    StringRow(OUTPUT_TEXT, L"KeyText", L"IO_PROCESS_KEYBOARD_KEYTEXT"),
};

constexpr GroupRow OUTPUT_GROUPS[] = {{151, L"Output", L"IO_PROCESS_KEYBOARD", OUTPUTS}};

constexpr FiredRow FIRED[] = {
    {EVENT_KEY_DOWN, OUTPUT_KEY_DOWN, L"[%s.%s.%s]触发输出事件[按下]键盘信息为[%s]"},
    {EVENT_KEY_UP, OUTPUT_KEY_UP, L"[%s.%s.%s]触发输出事件[抬起]键盘信息为[%s]"},
};

} // namespace

const NodeType CKeyboardIOProcess::TYPE{
    GUID_IOPROCESS_KEYBOARD, {101, L"Base param", L"IO_PROCESS_KEYBOARD", INPUTS}, OUTPUT_GROUPS};

int CKeyboardIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    m_pGraphNode = pGraphNode;
    if (pGraphNode == nullptr || !ReadEnable(*this, *pGraphNode, m_bEnable)) {
        return 0;
    }
    return WriteOutput(*pGraphNode, OUTPUT_TEXT, m_strKeyText) ? 1 : 0;
} catch (...) {
    return EndException();
}

int CKeyboardIOProcess::DevIOEventOccurred(EventRecordPtr pRecord) try {
    // The line about a missing record is shorter than that of other node types.
    if (!CheckRecord(pRecord, *this, m_pGraphNode, L"[%s.%s.%s]DevIOEventOccurred") ||
        DeviceOf(*pRecord) != DEVICE_KEYBOARD || m_bEnable == 0) {
        return 0;
    }
    if (EventOf(*pRecord) == EVENT_KEY_DOWN) {
        const auto* pKey = static_cast<const SKeyEventData*>(PayloadOf(*pRecord));
        m_strKeyText = pKey != nullptr ? TextOf(*pKey) : CString();
    }
    if (const FiredRow* pFired = FindFired(FIRED, EventOf(*pRecord))) {
        LogAndFire(*this, *m_pGraphNode, *pFired, m_strKeyText.GetString());
    }
    return 1;
} catch (...) {
    return EndException();
}
