// The operations of the session protocol.
#pragma once

#include "Fields.h"
#include "HeldInput.h"
#include "Host.h"

/// What an operation works on.
struct SRequestContext {
    CHost& host;
    const CFields& fields; ///< the request
    CHeldInput* pHeld;     ///< what the connection holds; null for a front that keeps no account of it
    unsigned long long nSceneVersion;
};

/// One operation: carries the request out and returns the reply's own fields, or throws a CRefusal.
struct RequestRow {
    const char* pszOp;
    OrderedJson (*pCarryOut)(SRequestContext& context);
    bool bChangesScene = false; ///< nodes, links or parameters
};

/// The operation of that name; null for an unknown one.
const RequestRow* FindRequest(std::string_view op);

/// Send the releases of all that is held, and log each as synthetic with the reason. Returns the list of what was sent.
OrderedJson ReleaseHeldInput(CHost& host, CHeldInput& held, const std::string& strReason);
