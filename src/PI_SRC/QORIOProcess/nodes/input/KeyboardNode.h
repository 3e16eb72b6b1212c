// Keyboard node: fires an output for each key press and release and offers the text of the last pressed key.
#pragma once

#include "nodes/shared/HostMembers.h"

class CKeyboardIOProcess : public P_ExtDevIOProcess {
public:
    CKeyboardIOProcess();

    void GetNodeOutput(SGraphNode* pGraphNode) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

private:
    int m_bEnable = 0;                  ///< "Enable" as last read by ProcessNode
    CString m_strKeyText;               ///< text of the last key-down event
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
};
