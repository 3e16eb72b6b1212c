#include "nodes/input/TextFieldNode.h"

#include "host/NodeSupport.h"
#include "host/NodeTables.h"
#include "host/NodeTypeGuid.h"
#include "nodes/input/KeyNames.h"

namespace {

enum : unsigned {
    INPUT_GROUP = 201,
    INPUT_TEXT = 202,
    INPUT_EVENT = 203,
    INPUT_CLEAR = 204,

    OUTPUT_GROUP = 251,
    OUTPUT_HAS_TEXT = 252,
    OUTPUT_TEXT = 253,
};

constexpr ParamRow INPUTS[] = {
    ENABLE_ROW,
    StringRow(INPUT_TEXT, L"InputText", L"IO_PROCESS_TEXTFIELDINPUT_TEXT"),
    EventRow(INPUT_EVENT, L"InputEvent", L"IO_PROCESS_TEXTFIELDINPUT_EVENT"),
    EventRow(INPUT_CLEAR, L"TextClear", L"TOUCH_CONTROL_SYBTN_CLEAR"),
};

constexpr GroupRow INPUT_GROUP_ROW{
    .nId = INPUT_GROUP, .pszName = L"Base param", .pszDisplayKey = L"IO_PROCESS_TEXTFIELDINPUT", .params = INPUTS};

constexpr ParamRow OUTPUTS[] = {
    // A switch without a range, unlike other switches.
    {.nId = OUTPUT_HAS_TEXT,
     .pszName = L"HasText",
     .pszDisplayKey = L"IO_PROCESS_TEXTFIELDINPUT_HASTEXT",
     .codes = PARAM_SWITCH,
     .flags = FLAGS_ORDINARY},
    StringRow(OUTPUT_TEXT, L"Text", L"IO_PROCESS_TEXTFIELDINPUT_OUTPUTTEXT"),
};

constexpr GroupRow OUTPUT_GROUPS[] = {
    {.nId = OUTPUT_GROUP, .pszName = L"Output", .pszDisplayKey = L"IO_PROCESS_TEXTFIELDINPUT", .params = OUTPUTS},
};

} // namespace

CTextFieldInputProcess::CTextFieldInputProcess() {
    m_nKindCode = KIND_IO_PROCESS;
    m_guidType = GUID_IOPROCESS_TEXT_FIELD;
    AppendInputGroup(m_lstParamGroup, INPUT_GROUP_ROW);
}

CTextFieldInputProcess::~CTextFieldInputProcess() = default;

void CTextFieldInputProcess::GetNodeOutput(SGraphNode* pGraphNode) {
    AppendOutputGroupsOnce(pGraphNode, OUTPUT_GROUPS);
}

int CTextFieldInputProcess::ProcessNode(SGraphNode* pGraphNode) try {
    if (pGraphNode == nullptr || m_pOwnerClip == nullptr) {
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
    if (IsTriggered(*pGraphNode, INPUT_EVENT)) {
        WriteNodeLog(LOG_INFORMATION, *this, *pGraphNode, L"[%s]触发输入事件[输入事件]");
        const VEKParam* pKeyName = FindInput(*this, *pGraphNode, INPUT_TEXT);
        if (pKeyName == nullptr) {
            return 1;
        }
        m_strText = ApplyKeyName(m_strText, pKeyName->m_strValue, GetKeyState(VK_CAPITAL));
    }
    if (IsTriggered(*pGraphNode, INPUT_CLEAR)) {
        WriteNodeLog(LOG_INFORMATION, *this, *pGraphNode, L"[%s]触发输入事件[清除]");
        m_strText.Empty();
    }
    WriteOutput(*pGraphNode, OUTPUT_HAS_TEXT, &VEKParam::m_nValue, m_strText.IsEmpty() ? 0 : 1);
    WriteOutput(*pGraphNode, OUTPUT_TEXT, &VEKParam::m_strValue, m_strText);
    return 1;
} catch (...) {
    return RejectFailure();
}
