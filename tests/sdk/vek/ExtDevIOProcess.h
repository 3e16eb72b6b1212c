#pragma once

#include "vek/Property.h"

#include "host/EventRecord.h"

class VEK_API P_ExtDevIOProcess : public VEKProperty {
public:
    P_ExtDevIOProcess();

    virtual int DevIOEventOccurred(VEKIOEvent* pEvent);

    VEKGraphNode* GraphNode;
};
