// What the render library reports to the host application.
#pragma once

#include "host/Clip.h"
#include "host/NodeBase.h"

/// Receives what nodes ask of the host. Pointers live for the call.
class IRenderSink {
public:
    /// A node fired an output by PostGeneralEventMessage. pClip and pObject may be null.
    virtual void OnGeneralEvent(VEKProperty* pNode, VEKClip* pClip, VEKObject* pObject, int nOutput) = 0;

    /// A node asked to redraw the panel behind a graph node.
    virtual void OnNodeRedraw(SGraphNode* pGraphNode) = 0;

protected:
    ~IRenderSink() = default;
};

/// Set the receiver; null drops the reports. It isn't owned and must outlive its registration.
VEKRENDER_API void SetRenderSink(IRenderSink* pSink);
