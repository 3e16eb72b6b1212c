// VR handle node: ties one VR hand controller to outputs and events and moves a scene object with it.
#pragma once

#include "host/EventRecord.h"

class CVRHandleIOProcess : public P_ExtDevIOProcess {
public:
    CVRHandleIOProcess();
    ~CVRHandleIOProcess() override;

    void InitParam() override;
    void GetNodeOutput(SGraphNode* pGraphNode) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(const SIOEventRecord* pRecord) override;

    CVEKXml* GetXmlReader() override;
    int* GetXmlLoadStatePtr() override;
    CString GetCtrlPosXmlPath() override;
    NodeParamInfoGrpArray* GetNodeParamInfoGrpAr() override;

    /// Empty the class's control layout; it is read again when asked for.
    static void ReleaseLayout();

private:
    void MoveObject(const SVRPluginData& sample) const;
    void WriteOutputs(const SVRPluginData& sample) const;

    int m_bEnable = 0;                  ///< "Enable" as last read by ProcessNode
    SGraphNode* m_pGraphNode = nullptr; ///< graph node last handed to ProcessNode; not owned
    CString m_strObjectName;            ///< scene object that follows the controller
    int m_nHandleType = 0;              ///< controller: 0 left, 1 right
    SVRPluginData m_previousSample;     ///< last accepted sample; the earlier state of the edge tests
};
