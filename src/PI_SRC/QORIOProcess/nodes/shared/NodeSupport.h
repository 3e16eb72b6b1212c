// What all node types share: reading inputs, writing outputs, firing, logging, ending exceptions.
#pragma once

#include <array>
#include <memory>
#include <span>

#include "nodes/shared/HostMembers.h"

/// The node's input as the graph supplies it (the graph node's inputs first, then the node's own groups); null if
/// absent.
VEKParam* FindInput(VEKProperty& node, SGraphNode& graphNode, unsigned nId);

/// The same for several inputs, in order.
template <typename... Ids>
std::array<VEKParam*, sizeof...(Ids)> FindInputs(VEKProperty& node, SGraphNode& graphNode, Ids... nIds) {
    return {FindInput(node, graphNode, nIds)...};
}

/// The node's own parameter; null if absent.
VEKParam* FindOwn(VEKProperty& node, unsigned nId);

/// The graph node's event input, which nothing else supplies; null if absent.
VEKParam* FindTrigger(SGraphNode& graphNode, unsigned nId);

/// Whether that event input fired; false if absent.
bool IsTriggered(SGraphNode& graphNode, unsigned nId);

/// Read "Enable" into bEnable, which stays as it is if the input is absent. Whether the node is enabled.
bool ReadEnable(VEKProperty& node, SGraphNode& graphNode, int& bEnable);

/// Read a text input into the text; an absent one leaves it as it is.
void ReadText(VEKProperty& node, SGraphNode& graphNode, unsigned nId, CString& strText);

/// Whether the texts are the same to the last character, also behind a zero.
bool IsSameText(const CString& strText, const CString& strOther);

/// The graph node's output pin; null if absent.
VEKParam* FindOutput(SGraphNode& graphNode, unsigned nId);

/// Write the pin's value when it differs, so that unchanged outputs cause no work behind them. A missing pin is
/// skipped.
void WriteOutput(SGraphNode& graphNode, unsigned nId, int nValue);
void WriteOutput(SGraphNode& graphNode, unsigned nId, float fValue);
void WriteOutput(SGraphNode& graphNode, unsigned nId, const CString& strValue);

/// Append to a list that owns its elements.
template <typename T>
void AppendOwned(CList<T*>& list, std::unique_ptr<T> pElement) {
    list.AddTail(pElement.get());
    static_cast<void>(pElement.release());
}

/// Fire an event output: posts a "GeneralEvent" to the node's event window, whose receiver owns it. Nothing happens
/// when the node is null or has no event window or message.
void FireGeneralEvent(VEKProperty* pNode, int nOutput);

/// Levels of log lines: an event fired, bad or missing input.
enum ELogLevel : int { LEVEL_INFORMATION = 4, LEVEL_ERROR = 32 };

/// Write one line of a node. The format's first three %s are the names of its clip, which it must have, of its graph
/// node and of the node; those of the further arguments follow.
template <typename... Arguments>
void WriteNodeLog(ELogLevel nLevel, VEKProperty& node, SGraphNode& graphNode, const wchar_t* pszFormat,
                  Arguments... arguments) {
    NSVEKLog::WriteLog(static_cast<EVEKLogLevel>(nLevel), 15, 567, 0, -1, pszFormat, NameOf(*ClipOf(node)).GetString(),
                       NameOf(graphNode).GetString(), NameOf(node).GetString(), arguments...);
}

/// What makes a node fire an event output, and the line that it logs first.
struct FiredRow {
    int nEvent; ///< the host's event, or what the node makes of several
    int nOutput;
    const wchar_t* pszLogFormat;
};

/// The row of an event; null if it has none.
const FiredRow* FindFired(std::span<const FiredRow> rows, int nEvent);

template <typename... Arguments>
void LogAndFire(VEKProperty& node, SGraphNode& graphNode, const FiredRow& row, Arguments... arguments) {
    WriteNodeLog(LEVEL_INFORMATION, node, graphNode, row.pszLogFormat, arguments...);
    FireGeneralEvent(&node, row.nOutput);
}

/// Whether the node can look at an event record: it has its clip and its graph node, and there is a record. That there
/// is none is logged.
bool IsReadyFor(EventRecordPtr pRecord, VEKProperty& node, SGraphNode* pGraphNode,
                const wchar_t* pszNoRecord = L"[%s.%s.%s]DevIOEventOccurred函数数据错误");

/// In the catch block of an operation that the host calls: ends the exception, since none crosses into the host. The
/// framework's one for invalid arguments alone goes on, by which the host learns that it handed over what can't be.
/// Answers 0, for "not handled".
int EndException();
