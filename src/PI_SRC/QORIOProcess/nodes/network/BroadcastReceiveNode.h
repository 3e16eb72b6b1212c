// Broadcast receive node: offers name and data of the broadcasts that carry its flag.
#pragma once

#include "nodes/shared/HostMembers.h"

class CBroadcastRevIOProcess : public P_ExtDevIOProcess {
public:
    CBroadcastRevIOProcess();

    void GetNodeOutput(SGraphNode* pGraphNode) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

private:
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
    CString m_strFlag;                  ///< "Flag" as last read by ProcessNode
};
