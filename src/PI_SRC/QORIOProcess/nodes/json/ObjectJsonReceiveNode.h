// Object JSON receive node: passes on the text that is addressed to one object of one clip.
#pragma once

#include "nodes/shared/HostMembers.h"

class CObjJsonReceive : public P_ExtDevIOProcess {
public:
    CObjJsonReceive();

    void InitParam() override;
    void GetNodeOutput(SGraphNode* pGraphNode) override;
    int ProcessNode(SGraphNode* pGraphNode) override;
    int DevIOEventOccurred(EventRecordPtr pRecord) override;
};
