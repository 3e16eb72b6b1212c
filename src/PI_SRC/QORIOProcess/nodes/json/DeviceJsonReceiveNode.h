// Device JSON receive node: takes a device's JSON text, checked against up to three key and value pairs.
#pragma once

#include "nodes/json/JsonNodes.h"

class CDevJsonReceive : public CJsonReceiveNode<CDevJsonReceive, CNodeWithLayout<CDevJsonReceive>> {
public:
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

    static const NodeType TYPE;
};
