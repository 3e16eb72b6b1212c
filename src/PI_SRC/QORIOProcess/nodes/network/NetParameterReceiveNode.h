// Net parameter receive node: fires when a remote-control record names its clip, group, key and key number.
#pragma once

#include "nodes/shared/NodeType.h"

class CNetParameterReceiveIOProcess : public COutputNode<CNetParameterReceiveIOProcess> {
public:
    void InitParam() override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

    static const NodeType TYPE;

private:
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
};
