// Broadcast receive node: offers name and data of the broadcasts that carry its flag.
#pragma once

#include "nodes/shared/NodeType.h"

class CBroadcastRevIOProcess : public COutputNode<CBroadcastRevIOProcess> {
public:
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

    static const NodeType TYPE;

private:
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
    CString m_strFlag;                  ///< "Flag" as last read by ProcessNode
};
