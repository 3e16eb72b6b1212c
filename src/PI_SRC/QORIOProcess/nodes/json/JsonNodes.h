// What the two JSON receive nodes share.
#pragma once

#include "host/NodeSupport.h"

/// A JSON receive node's evaluation: remember the graph node; 1 when there is one and the node has its owner clip.
int ProcessJsonNode(P_ExtDevIOProcess& node, SGraphNode* pGraphNode);

/// Check a loaded parameter set: a node without any parameter group raises the framework's invalid-argument exception.
void CheckJsonParams(const P_ExtDevIOProcess& node);

/// Outputs of a JSON receive node: the received text and the event.
struct JsonOutputs {
    unsigned nText;
    unsigned nEvent;
};

/// Offer an accepted text and fire the event output; logs one line. The format takes the three names. Result 1.
int AcceptJsonText(P_ExtDevIOProcess& node, const JsonOutputs& outputs, const CString& strText,
                   const wchar_t* pszLogFormat);
