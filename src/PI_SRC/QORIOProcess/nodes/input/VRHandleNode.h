// VR handle node: ties one VR hand controller to outputs and events and moves a scene object with it.
#pragma once

#include "nodes/shared/NodeType.h"

class CVRHandleIOProcess : public COutputNode<CVRHandleIOProcess, CNodeWithLayout<CVRHandleIOProcess>> {
public:
    void InitParam() override;
    void GetNodeOutput(SGraphNode* pGraphNode) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

    static const NodeType TYPE;

private:
    void ShowSample(const SVRPluginData& sample);

    int m_bEnable = 0;                  ///< "Enable" as last read by ProcessNode
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
    CString m_strObjectName;            ///< scene object that follows the controller
    int m_nHandleType = 0;              ///< controller: 0 left, 1 right
    SVRPluginData m_previousSample;     ///< last accepted sample; the earlier state of the edge tests
};
