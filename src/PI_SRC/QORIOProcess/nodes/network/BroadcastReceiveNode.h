// Broadcast receive node: offers name and data of the broadcasts that carry its flag.
#pragma once

#include "host/HostNetwork.h"

class CBroadcastRevIOProcess : public P_ExtDevIOProcess {
public:
    CBroadcastRevIOProcess();
    ~CBroadcastRevIOProcess() override;

    void GetNodeOutput(SGraphNode* pGraphNode) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(const SIOEventRecord* pRecord) override;

private:
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
    CString m_strFlag;                  ///< "Flag" as last read by ProcessNode
};
