// Text field node: edits a text by the key names of an on-screen keyboard.
#pragma once

#include "nodes/shared/NodeType.h"

class CTextFieldInputProcess : public COutputNode<CTextFieldInputProcess> {
public:
    int ProcessNode(SGraphNode* pGraphNode) override;

    static const NodeType TYPE;

private:
    int m_bEnable = 0; ///< "Enable" as last read by ProcessNode
    CString m_strText; ///< the edited text
};
