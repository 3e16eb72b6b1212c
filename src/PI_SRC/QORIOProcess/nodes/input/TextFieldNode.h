// Text field node: edits a text by the key names of an on-screen keyboard.
#pragma once

#include "nodes/shared/HostMembers.h"

class CTextFieldInputProcess : public P_ExtDevIOProcess {
public:
    CTextFieldInputProcess();

    void GetNodeOutput(SGraphNode* pGraphNode) override;
    int ProcessNode(SGraphNode* pGraphNode) override;

private:
    int m_bEnable = 0; ///< "Enable" as last read by ProcessNode
    CString m_strText; ///< the edited text
};
