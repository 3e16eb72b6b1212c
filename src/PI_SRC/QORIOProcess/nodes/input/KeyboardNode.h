// Keyboard node: fires an output for each key press and release and offers the text of the last pressed key.
#pragma once

#include "nodes/shared/NodeType.h"

class CKeyboardIOProcess : public COutputNode<CKeyboardIOProcess> {
public:
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

    static const NodeType TYPE;

private:
    int m_bEnable = 0;                  ///< "Enable" as last read by ProcessNode
    CString m_strKeyText;               ///< text of the last key-down event
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
};
