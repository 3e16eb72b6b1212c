#include "nodes/input/KeyboardNode.h"

#include "host/NodeSupport.h"
#include "host/NodeTables.h"
#include "host/NodeTypeGuid.h"

namespace {

enum : unsigned {
    INPUT_GROUP = 101,
    OUTPUT_GROUP = 151,
    OUTPUT_KEY_DOWN = 152,
    OUTPUT_KEY_UP = 153,
    OUTPUT_TEXT = 154
};

constexpr ParamRow INPUTS[] = {ENABLE_ROW};

constexpr GroupRow INPUT_GROUP_ROW{
    .nId = INPUT_GROUP, .pszName = L"Base param", .pszDisplayKey = L"IO_PROCESS_KEYBOARD", .params = INPUTS};

constexpr ParamRow OUTPUTS[] = {
    EventRow(OUTPUT_KEY_DOWN, L"KeyDown", L"IO_PROCESS_KEYBOARD_KEYDOWN"),
    EventRow(OUTPUT_KEY_UP, L"KeyUp", L"IO_PROCESS_KEYBOARD_KEYUP"),
    StringRow(OUTPUT_TEXT, L"KeyText", L"IO_PROCESS_KEYBOARD_KEYTEXT"),
};

constexpr GroupRow OUTPUT_GROUPS[] = {
    {.nId = OUTPUT_GROUP, .pszName = L"Output", .pszDisplayKey = L"IO_PROCESS_KEYBOARD", .params = OUTPUTS},
};

struct KeyEventRow {
    int nEvent;
    unsigned nOutput;
    const wchar_t* pszLogFormat;
};

constexpr KeyEventRow KEY_EVENTS[] = {
    {EVENT_KEY_DOWN, OUTPUT_KEY_DOWN, L"[%s.%s.%s]触发输出事件[按下]键盘信息为[%s]"},
    {EVENT_KEY_UP, OUTPUT_KEY_UP, L"[%s.%s.%s]触发输出事件[抬起]键盘信息为[%s]"},
};

} // namespace

CKeyboardIOProcess::CKeyboardIOProcess() {
    m_nKindCode = KIND_IO_PROCESS;
    m_guidType = GUID_IOPROCESS_KEYBOARD;
    AppendInputGroup(m_lstParamGroup, INPUT_GROUP_ROW);
}

CKeyboardIOProcess::~CKeyboardIOProcess() = default;

void CKeyboardIOProcess::GetNodeOutput(SGraphNode* pGraphNode) {
    AppendOutputGroupsOnce(pGraphNode, OUTPUT_GROUPS);
}

int CKeyboardIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    m_pGraphNode = pGraphNode;
    if (pGraphNode == nullptr) {
        return 0;
    }
    const VEKParam* pEnable = FindInput(*this, *pGraphNode, PARAM_ENABLE);
    if (pEnable == nullptr) {
        return 0;
    }
    m_bEnable = pEnable->m_nValue;
    if (m_bEnable == 0) {
        return 0;
    }
    VEKParam* pText = FindOutput(*pGraphNode, OUTPUT_TEXT);
    if (pText == nullptr) {
        return 0;
    }
    AssignIfDifferent(pText->m_strValue, m_strKeyText);
    return 1;
} catch (...) {
    return RejectFailure();
}

int CKeyboardIOProcess::DevIOEventOccurred(const SIOEventRecord* pRecord) try {
    if (m_pOwnerClip == nullptr || m_pGraphNode == nullptr) {
        return 0;
    }
    if (pRecord == nullptr) {
        // Shorter than the line of the other node types.
        WriteNodeLog(LOG_ERROR, *this, *m_pGraphNode, L"[%s.%s.%s]DevIOEventOccurred");
        return 0;
    }
    if (pRecord->m_nDevice != DEVICE_KEYBOARD || m_bEnable == 0) {
        return 0;
    }
    if (pRecord->m_nEvent == EVENT_KEY_DOWN) {
        const auto* pKey = static_cast<const SKeyEventData*>(pRecord->m_pPayload);
        AssignIfDifferent(m_strKeyText, pKey != nullptr ? pKey->m_strText : CString());
    }
    for (const KeyEventRow& row : KEY_EVENTS) {
        if (row.nEvent == pRecord->m_nEvent) {
            WriteNodeLog(LOG_INFORMATION, *this, *m_pGraphNode, row.pszLogFormat, m_strKeyText.GetString());
            FireGeneralEvent(this, static_cast<int>(row.nOutput));
        }
    }
    return 1;
} catch (...) {
    return RejectFailure();
}
