// Key check node: polls one key with its modifiers at each evaluation and fires its press, its hold and its release.
#pragma once

#include "nodes/shared/NodeType.h"

class CKeyCheckProcess : public COutputNode<CKeyCheckProcess> {
public:
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

    static const NodeType TYPE;

private:
    int m_bEnable = 0;                  ///< "Enable" as last read by ProcessNode
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
    bool m_bKeyDown = false;            ///< the key, with its modifiers, was down at the last evaluation
    DWORD m_nLastHoldTick = 0;          ///< GetTickCount of the last "HoldDown"
};
