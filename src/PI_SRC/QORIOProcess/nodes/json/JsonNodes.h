// What the two JSON receive nodes share.
#pragma once

#include "nodes/shared/NodeTables.h"

/// The output of the received text.
constexpr ParamRow JsonTextRow(unsigned nId) {
    return StringRow(nId, L"ReceiveData", L"LOGIC_CAL_DATASEPARATE_DATA");
}

/// The output that fires with it.
constexpr ParamRow JsonEventRow(unsigned nId) {
    return EventRow(nId, L"Event", L"IO_PROCESS_RECEIVE_JSON");
}

/// A JSON receive node's InitParam: raises the framework's invalid-argument exception when the node has no group.
void CheckJsonParams(VEKProperty& node);

/// A JSON receive node's evaluation: remember the graph node; 1 when there is one and the node has its clip.
int ProcessJsonNode(P_ExtDevIOProcess& node, SGraphNode* pGraphNode);

/// Offer an accepted text at an output, log, and fire the event output. Answers 1.
int AcceptJsonText(P_ExtDevIOProcess& node, unsigned nTextOutput, const CString& strText, const wchar_t* pszLogFormat,
                   int nEventOutput);
