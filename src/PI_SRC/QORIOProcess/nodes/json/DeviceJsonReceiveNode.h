// Device JSON receive node: takes a device's JSON text, checked against up to three key and value pairs.
#pragma once

#include "nodes/shared/ControlLayout.h"

class CDevJsonReceive : public P_ExtDevIOProcess {
    DECLARE_CONTROL_LAYOUT()
public:
    CDevJsonReceive();

    void InitParam() override;
    void GetNodeOutput(SGraphNode* pGraphNode) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;
};
