// What all node types share: reading an input, writing an output, firing, logging, the class-static layout.
#pragma once

#include <utility>

#include "host/EventRecord.h"
#include "host/HostLog.h"
#include "host/HostRender.h"

/// The node's input as the graph supplies it (the graph node's inputs first, then the node's own groups); null if
/// absent.
inline VEKParam* FindInput(const VEKProperty& node, const SGraphNode& graphNode, unsigned nId) {
    return QORFindParamByGuid(MakeParamGuid(nId), graphNode.m_lstInputGroup, node.m_lstParamGroup);
}

/// The graph node's output pin; null if absent.
inline VEKParam* FindOutput(const SGraphNode& graphNode, unsigned nId) {
    return FindParam(graphNode.m_lstOutputGroup, MakeParamGuid(nId));
}

/// Whether an event input fired: read from the graph node's inputs alone, false if absent.
inline bool IsTriggered(const SGraphNode& graphNode, unsigned nId) {
    const VEKParam* pEvent = FindParam(graphNode.m_lstInputGroup, MakeParamGuid(nId));
    return pEvent != nullptr && pEvent->m_nValue != 0;
}

/// Assign only when the value differs, so that unchanged outputs cause no work behind them.
template <typename T>
void AssignIfDifferent(T& target, const T& value) {
    if (target != value) {
        target = value;
    }
}

/// Strings that were assigned to one another share their characters: those needn't be compared.
inline void AssignIfDifferent(CString& strTarget, const CString& strValue) {
    if (strTarget.GetString() != strValue.GetString() && strTarget != strValue) {
        strTarget = strValue;
    }
}

/// Write one member of an output pin when it differs; a missing pin is skipped.
template <typename T>
void WriteOutput(const SGraphNode& graphNode, unsigned nId, T VEKParam::*pMember, const T& value) {
    if (VEKParam* pOutput = FindOutput(graphNode, nId)) {
        AssignIfDifferent(pOutput->*pMember, value);
    }
}

/// Fire an event output: posts a "GeneralEvent" to the node's event window, whose receiver owns it. Nothing happens
/// when the node is null or has no event window or message.
void FireGeneralEvent(VEKProperty* pNode, int nOutput);

/// Write one line to the host's log with the integers that every line of this module carries.
template <typename... Arguments>
void WriteModuleLog(EVEKLogLevel nLevel, const wchar_t* pszFormat, Arguments... arguments) {
    NSVEKLog::WriteLog(nLevel, 15, 567, 0, -1, pszFormat, arguments...);
}

/// Write one line of a node: the format's first three %s are the names of its owner clip, its graph node and the node;
/// further arguments follow. The node must have its owner clip.
template <typename... Arguments>
void WriteNodeLog(EVEKLogLevel nLevel, const VEKProperty& node, const SGraphNode& graphNode, const wchar_t* pszFormat,
                  Arguments... arguments) {
    WriteModuleLog(nLevel, pszFormat, node.m_pOwnerClip->m_strName.GetString(), graphNode.m_strName.GetString(),
                   node.m_strName.GetString(), arguments...);
}

/// The answer to a null event record: one error line, result 0.
int RejectNullRecord(const VEKProperty& node, const SGraphNode& graphNode);

/// In the catch block of an operation that the host calls: what was raised ends here, since hosts rest on getting an
/// answer, and the result is 0. The one exception is the framework's for invalid arguments, which goes on: by it the
/// host learns that what it handed over, or what the node holds, can't be.
int RejectFailure();

/// A class's static control layout: the reader, its state and the layout groups.
class CParamLayout {
public:
    CParamLayout() = default;
    ~CParamLayout() { Release(); }

    CParamLayout(const CParamLayout&) = delete;
    CParamLayout& operator=(const CParamLayout&) = delete;

    CVEKXml* Reader() { return &m_xmlReader; }
    int* LoadState() { return &m_nLoadState; }

    /// The layout groups; read through the node's layout operations while the array is empty, as it stays when that
    /// fails.
    NodeParamInfoGrpArray* Groups(SParamGrpPosAdjust& node);

    /// Delete the groups, from the last to the first, and free the storage. Groups() fills the array again.
    void Release();

private:
    CVEKXml m_xmlReader;
    int m_nLoadState = XML_NOT_LOADED;
    NodeParamInfoGrpArray m_arGroup;
};

/// Path of a control-layout file of this module; empty when there is no memory for it.
CString ParamLayoutPath(const wchar_t* pszFileName);
