#include "nodes/json/JsonNodes.h"

#include "nodes/shared/NodeSupport.h"

void CheckJsonParams(VEKProperty& node) {
    if (GroupsOf(node).IsEmpty()) {
        AfxThrowInvalidArgException();
    }
}

int ProcessJsonNode(P_ExtDevIOProcess& node, SGraphNode* pGraphNode) {
    GraphNodeOf(node) = pGraphNode;
    return pGraphNode != nullptr && ClipOf(node) != nullptr ? 1 : 0;
}

int AcceptJsonText(P_ExtDevIOProcess& node, unsigned nTextOutput, const CString& strText, const wchar_t* pszLogFormat,
                   int nEventOutput) {
    SGraphNode& graphNode = *GraphNodeOf(node);
    WriteOutput(graphNode, nTextOutput, strText);
    WriteNodeLog(LEVEL_INFORMATION, node, graphNode, pszLogFormat);
    PostGeneralEventMessage(&node, ClipOf(node), nullptr, nEventOutput);
    return 1;
}
