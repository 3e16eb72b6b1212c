// Net parameter receive node: fires when a remote-control record names its clip, group, key and key number.
#pragma once

#include "nodes/shared/HostMembers.h"

class CNetParameterReceiveIOProcess : public P_ExtDevIOProcess {
public:
    CNetParameterReceiveIOProcess();

    void InitParam() override;
    void GetNodeOutput(SGraphNode* pGraphNode) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

private:
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
};
