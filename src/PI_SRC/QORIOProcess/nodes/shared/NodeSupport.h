// What all node types share: reading inputs, writing outputs, firing, logging, ending exceptions.
#pragma once

#include <array>
#include <memory>
#include <span>
#include <string_view>

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

/// The event input, looked for in the graph node's inputs alone; null if absent.
VEKParam* FindTrigger(SGraphNode& graphNode, unsigned nId);

/// Whether that event input fired; false if absent.
bool IsTriggered(SGraphNode& graphNode, unsigned nId);

/// Read "Enable" into bEnable, which stays as it is if the input is absent. Answers whether the node is enabled.
bool ReadEnable(VEKProperty& node, SGraphNode& graphNode, int& bEnable);

/// Read a text input into the text; an absent one leaves it as it is.
void ReadText(VEKProperty& node, SGraphNode& graphNode, unsigned nId, CString& strText);

/// The whole text, with what stands behind a zero in it.
inline std::wstring_view View(const CString& strText) {
    return {strText.GetString(), static_cast<size_t>(strText.GetLength())};
}

/// Whether the texts are the same in length and every character: a zero inside ends neither.
inline bool IsSameText(const CString& strText, const CString& strOther) {
    return View(strText) == View(strOther);
}

/// The graph node's output pin; null if absent.
VEKParam* FindOutput(SGraphNode& graphNode, unsigned nId);

/// Write the pin's value when it differs, so that unchanged outputs cause no work behind them. A missing pin is
/// skipped; the last one answers whether there is a pin.
void WriteOutput(SGraphNode& graphNode, unsigned nId, int nValue);
void WriteOutput(SGraphNode& graphNode, unsigned nId, float fValue);
bool WriteOutput(SGraphNode& graphNode, unsigned nId, const CString& strValue);

/// Append to a list that owns its elements.
template <typename List, typename Element>
void AppendOwned(List& list, std::unique_ptr<Element> pElement) {
    list.AddTail(pElement.get());
    static_cast<void>(pElement.release());
}

/// Fire an event output: posts a "GeneralEvent" to the node's event window, whose receiver owns it. Nothing happens
/// when the node is null or has no event window or message.
void FireGeneralEvent(VEKProperty* pNode, int nOutput);

/// Write one line of a node. The format's first three %s are the names of its clip, which it must have, of its graph
/// node and of the node; further ones take the further arguments.
template <typename... Arguments>
void WriteNodeLog(ELogLevel nLevel, VEKProperty& node, SGraphNode& graphNode, const wchar_t* pszFormat,
                  Arguments... arguments) {
    NSVEKLog::WriteLog(static_cast<EVEKLogLevel>(nLevel), 15, 567, 0, -1, pszFormat, NameOf(*ClipOf(node)).GetString(),
                       NameOf(graphNode).GetString(), NameOf(node).GetString(), arguments...);
}

/// What makes a node fire an event output, and the line that it logs first.
struct FiredRow {
    int nEvent; ///< id of the host's event, or the node's own for what it makes of several
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

/// Whether the node can look at an event record: it has its clip and its graph node, and there is a record. A missing
/// record is logged.
bool CheckRecord(EventRecordPtr pRecord, VEKProperty& node, SGraphNode* pGraphNode,
                 const wchar_t* pszNoRecord = L"[%s.%s.%s]DevIOEventOccurred函数数据错误");

/// In the catch block of an operation that the host calls: ends the exception, since none crosses into the host, and
/// answers 0, for "not handled". Only CInvalidArgException is raised again: the host broke the contract.
int EndException();
