// Net parameter receive node: fires when a remote-control record names its clip, group, key and key number.
#pragma once

#include "host/HostNetwork.h"

class CNetParameterReceiveIOProcess : public P_ExtDevIOProcess {
public:
    CNetParameterReceiveIOProcess();
    ~CNetParameterReceiveIOProcess() override;

    void InitParam() override;
    void GetNodeOutput(SGraphNode* pGraphNode) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(const SIOEventRecord* pRecord) override;

private:
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
};
