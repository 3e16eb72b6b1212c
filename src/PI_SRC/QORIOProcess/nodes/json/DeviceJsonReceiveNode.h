// Device JSON receive node: takes a device's JSON text, checked against up to three key and value pairs.
#pragma once

#include "host/EventRecord.h"

class CDevJsonReceive : public P_ExtDevIOProcess {
public:
    CDevJsonReceive();
    ~CDevJsonReceive() override;

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
};
