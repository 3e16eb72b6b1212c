// The operations of the session protocol.
#pragma once

#include "engine/Host.h"
#include "protocol/Fields.h"
#include "scene/OutputChanges.h"
#include "session/HeldInput.h"

/// What an operation works on.
struct SRequestContext {
    CHost& host;
    const CFields& fields; ///< the request
    CHeldInputs& held;     ///< what the connections hold
    CHeldInput* pHeld;     ///< what this one holds; null for a front that keeps no account of it
    unsigned long long nSceneVersion;
    COutputChanges* pFrameOutputs = nullptr; ///< what requests for a frame told of outputs
};

/// One operation: carries the request out and returns the reply's own fields, or throws a CRefusal.
struct RequestRow {
    const char* pszOp;
    OrderedJson (*pCarryOut)(SRequestContext& context);
    bool bChangesScene = false; ///< nodes, links or parameters
};

/// The operation of that name; null for an unknown one.
const RequestRow* FindRequest(std::string_view op);

/// Evaluate all nodes, as for a frame: a fault of one is logged and the others go on. Adds each node's result, null
/// after a fault, to the object pResults; null: nobody asks.
void EvaluateFrame(CHost& host, OrderedJson* pResults);

/// Send the releases of what a connection holds, and log each as synthetic with the reason. Returns the list of what
/// was released.
OrderedJson ReleaseHeldInput(CHost& host, CHeldInputs& all, CHeldInput& held, const std::string& strReason,
                             const SHeldFilter& filter = {});
