// The table of the node types: what makes each act, what is seen of that, and where they differ otherwise.
#pragma once

#include "ModuleHost.h"
#include "host/RemoteControlRecord.h"

/// One of each payload, as the type that takes it acts on it.
struct ContractPayloads {
    ContractPayloads();

    /// Texts that types offer as they came.
    void SetTexts(const CString& strText);

    SKeyEventData key;
    SQORMouseData stroke[3] = {{1, 0.25f, 0.75f, CPoint(10, 20), 0},
                               {1, 100.25f, 0.75f, CPoint(110, 20), 0},
                               {1, 200.25f, 0.75f, CPoint(210, 20), 0}};
    SVRPluginData pressed;
    SVRPluginData released;
    CQORPanelRemoteCtrlData remote;
    SBroadcastItem broadcast;
    SDeviceTextData deviceText;
    SObjectTextData objectText;
};

struct ContractEvent {
    int nEvent;
    void* pPayload;
};

struct ContractType {
    unsigned char nTypeByte;
    const char* pszName;
    /// What is seen of an enabled node that is given its events, or of two evaluations where pTrigger makes it act.
    /// With neededInputs it must be the same each time.
    std::vector<std::string> acts;

    std::vector<int> devices = {};                                      ///< whose events it takes
    std::vector<ContractEvent> (*pEvents)(ContractPayloads&) = nullptr; ///< the events that make it act
    void (*pTrigger)(NodeScene&) = nullptr;                             ///< the inputs that make it act
    const char* pszNullRecord = nullptr;  ///< the line that a missing record is logged with
    bool bNullRecordWhileDisabled = true; ///< logged by a disabled node, too
    int nAnswerToOtherEvents = 0;         ///< and to missing records
    bool bAnyEventId = false;             ///< acts on its payloads whatever the event's id is
    bool bSwitched = false;               ///< has "Enable"; events follow what that was at the last evaluation
    bool bEvaluatesWithoutClip = false;
    const char* pszLayoutFile = nullptr;
    std::vector<unsigned> neededInputs = {};       ///< without each of which it does nothing
    void (*pMakeOutputsOld)(NodeScene&) = nullptr; ///< leave an older version's outputs, which the node completes
    unsigned nPanelInput = 0;                      ///< the input whose edit the node wants to hear of
    unsigned nTrigger = 0;                         ///< the input that pTrigger sets, on the graph node
    bool bNeedsGroups = false;                     ///< InitParam takes no node without parameters
    bool bUpgrades = false;                        ///< InitParam makes any version that of a new node
    int nAddedToForeignOutputs = 0;                ///< pins that the node adds to a group that isn't its own

    friend std::ostream& operator<<(std::ostream& out, const ContractType& type) { return out << type.pszName; }
};

/// All types, in the catalogue's order.
const std::vector<ContractType>& ContractTypes();

/// Those that have what is asked for, in the same order.
std::vector<ContractType> TypesWith(bool (*pHas)(const ContractType&));
