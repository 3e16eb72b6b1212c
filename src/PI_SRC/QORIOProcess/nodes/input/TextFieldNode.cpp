#include "nodes/input/TextFieldNode.h"

#include "host/NodeTypeGuid.h"
#include "nodes/input/KeyNames.h"
#include "nodes/shared/NodeSupport.h"
#include "nodes/shared/SharedRows.h"

namespace {

enum { INPUT_TEXT = 202, INPUT_EVENT = 203, INPUT_CLEAR = 204 };
enum { OUTPUT_HAS_TEXT = 252, OUTPUT_TEXT = 253 };

constexpr ParamRow INPUTS[] = {
    ENABLE_ROW,
    StringRow(INPUT_TEXT, L"InputText", L"IO_PROCESS_TEXTFIELDINPUT_TEXT"),
    EventRow(INPUT_EVENT, L"InputEvent", L"IO_PROCESS_TEXTFIELDINPUT_EVENT"),
    EventRow(INPUT_CLEAR, L"TextClear", L"TOUCH_CONTROL_SYBTN_CLEAR"),
};

constexpr ParamRow OUTPUTS[] = {
    // A switch without a range, unlike other switches.
    {OUTPUT_HAS_TEXT, L"HasText", L"IO_PROCESS_TEXTFIELDINPUT_HASTEXT", PARAM_SWITCH, std::nullopt, FLAGS_ORDINARY},
    StringRow(OUTPUT_TEXT, L"Text", L"IO_PROCESS_TEXTFIELDINPUT_OUTPUTTEXT"),
};

constexpr GroupRow OUTPUT_GROUPS[] = {{251, L"Output", L"IO_PROCESS_TEXTFIELDINPUT", OUTPUTS}};

} // namespace

const NodeType CTextFieldInputProcess::TYPE{
    GUID_IOPROCESS_TEXT_FIELD, {201, L"Base param", L"IO_PROCESS_TEXTFIELDINPUT", INPUTS}, OUTPUT_GROUPS};

int CTextFieldInputProcess::ProcessNode(SGraphNode* pGraphNode) try {
    if (pGraphNode == nullptr || ClipOf(*this) == nullptr || !ReadEnable(*this, *pGraphNode, m_bEnable)) {
        return 0;
    }
    if (IsTriggered(*pGraphNode, INPUT_EVENT)) {
        WriteNodeLog(LEVEL_INFORMATION, *this, *pGraphNode, L"[%s]触发输入事件[输入事件]");
        VEKParam* pKeyName = FindInput(*this, *pGraphNode, INPUT_TEXT);
        if (pKeyName == nullptr) {
            return 1;
        }
        m_strText = ApplyKeyName(m_strText, TextOf(*pKeyName), GetKeyState(VK_CAPITAL));
    }
    if (IsTriggered(*pGraphNode, INPUT_CLEAR)) {
        WriteNodeLog(LEVEL_INFORMATION, *this, *pGraphNode, L"[%s]触发输入事件[清除]");
        m_strText.Empty();
    }
    WriteOutput(*pGraphNode, OUTPUT_HAS_TEXT, m_strText.IsEmpty() ? 0 : 1);
    WriteOutput(*pGraphNode, OUTPUT_TEXT, m_strText);
    return 1;
} catch (...) {
    return EndException();
}
