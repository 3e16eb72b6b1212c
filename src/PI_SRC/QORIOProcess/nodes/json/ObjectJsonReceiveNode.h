// Object JSON receive node: passes on the text that is addressed to one object of one clip.
#pragma once

#include "nodes/json/JsonNodes.h"

class CObjJsonReceive : public CJsonReceiveNode<CObjJsonReceive> {
public:
    int DevIOEventOccurred(EventRecordPtr pRecord) override;

    static const NodeType TYPE;
};
