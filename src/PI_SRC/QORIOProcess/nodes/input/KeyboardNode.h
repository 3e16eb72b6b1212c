// Keyboard node: fires an output for each key press and release and offers the text of the last pressed key.
#pragma once

#include "host/EventRecord.h"
#include "host/NodeBase.h"

class CKeyboardIOProcess : public P_ExtDevIOProcess {
public:
    CKeyboardIOProcess();
    ~CKeyboardIOProcess() override;

    void GetNodeOutput(SGraphNode* pGraphNode) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(const SIOEventRecord* pRecord) override;

private:
    int m_bEnable = 0;                  ///< "Enable" as last read by ProcessNode
    CString m_strKeyText;               ///< text of the last key-down event
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
};
