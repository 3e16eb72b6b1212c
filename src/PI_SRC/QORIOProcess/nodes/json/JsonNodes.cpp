#include "nodes/json/JsonNodes.h"

int ProcessJsonNode(P_ExtDevIOProcess& node, SGraphNode* pGraphNode) {
    node.m_pBaseGraphNode = pGraphNode;
    return pGraphNode != nullptr && node.m_pOwnerClip != nullptr ? 1 : 0;
}

void CheckJsonParams(const P_ExtDevIOProcess& node) {
    if (node.m_lstParamGroup.IsEmpty()) {
        AfxThrowInvalidArgException();
    }
}

int AcceptJsonText(P_ExtDevIOProcess& node, const JsonOutputs& outputs, const CString& strText,
                   const wchar_t* pszLogFormat) {
    SGraphNode& graphNode = *node.m_pBaseGraphNode;
    if (VEKParam* pText = FindOutput(graphNode, outputs.nText)) {
        pText->m_strValue = strText; // without comparing, which would end at a zero inside the text
    }
    WriteNodeLog(LOG_INFORMATION, node, graphNode, pszLogFormat);
    PostGeneralEventMessage(&node, node.m_pOwnerClip, nullptr, static_cast<int>(outputs.nEvent));
    return 1;
}
