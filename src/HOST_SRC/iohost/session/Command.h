// What a session can be told to do, one struct an operation. docs/session-protocol.md describes each.
#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "HostSetup.h"
#include "host/EventRecord.h"
#include "host/RemoteControlRecord.h"
#include "network/Peers.h"
#include "session/SceneDocument.h"

using KeySet = std::bitset<256>; ///< virtual-key codes

// ---- The module -------------------------------------------------------------------------------------------------

struct SCatalogueCommand {};

struct SCallCommand {
    unsigned nCode = 0;
};

struct SQuitCommand {};

// ---- Nodes ------------------------------------------------------------------------------------------------------

struct SCreateCommand : SNodeStart {
    bool bOutputs = true;                ///< ask the node for its outputs in the end
    std::optional<SSavedSet> saved = {}; ///< out of a project; none: a new node
};

/// Whatever takes one node and nothing else.
struct SNodeCommand {
    std::string strHandle;
};

struct SInspectCommand : SNodeCommand {};
struct SInspectNodesCommand {
    std::vector<std::string> handles; ///< those of no node are passed over: it may just have gone
};
struct SInitCommand : SNodeCommand {};
struct SOutputsCommand : SNodeCommand {};
struct SLayoutCommand : SNodeCommand {};

struct SRenameCommand {
    std::string strHandle;
    CString strGraph; ///< the graph node's new name
};

struct SDestroyCommand {
    std::string strHandle;
    std::optional<GUID> type = {}; ///< in the record; none: the node's own
    bool bPointer = true;          ///< false: null in the record
};

// ---- Evaluation and events --------------------------------------------------------------------------------------

/// When the nodes behind a fired output are evaluated.
enum class EEvaluation {
    Frame, ///< with the next frame, as all nodes are
    Event, ///< at once
};
NAMES(EEvaluation, "frame", "event")

struct SEvaluateCommand {
    EEvaluation nOn = EEvaluation::Frame;
};

struct SProcessCommand {
    std::optional<std::string> handle = {}; ///< none: all nodes
    bool bGraph = true;                     ///< false: a null graph node
};

/// One frame: all nodes, and a fault of one doesn't keep the others from theirs.
struct SFrameCommand {
    bool bOutputs = true; ///< tell which value outputs changed since the last such frame
};

/// The contract's own records; none: a null payload.
using Payload = std::variant<std::monostate, SKeyEventData, SQORMouseData, SVRPluginData, SBroadcastItem,
                             CQORPanelRemoteCtrlData, SDeviceTextData, SObjectTextData>;

/// An event record for one node or all of them.
struct SEventCommand {
    std::optional<std::string> handle = {}; ///< none: all nodes
    bool bRecord = true;                    ///< false: a null record; nothing below counts then
    int nDevice = 0;
    int nEvent = 0;
    Payload payload = {};
};

/// One thing that can be held: the text of a key, the number of a pointer, of a hand, or of a virtual key.
using HeldIdentity = std::variant<int, std::string>;

/// What a release is about: all that is held unless a device, and one key, pointer or hand of it, is named.
struct SHeldFilter {
    std::optional<int> device = {};
    std::optional<HeldIdentity> identity = {};
};

struct SReleaseHeldCommand {
    std::string strReason = "the page asks for it";
    SHeldFilter filter = {};
    bool bEveryone = false; ///< what all connections hold, not this one's alone
};

// ---- Parameters and links ---------------------------------------------------------------------------------------

struct SSetCommand {
    std::string strHandle;
    unsigned nParam = 0;
    bool bOwn = false; ///< the node's own parameter, not the graph node's input
    ParamValue value;
    bool bStep = true; ///< false: it comes of running the scene, and there is nothing to undo
};

/// As an editor's panel does it.
struct SEditCommand : SSetCommand {};

struct STriggerCommand {
    std::string strHandle;
    unsigned nParam = 0;
};

enum class EPlace { Own, Inputs, Outputs };
NAMES(EPlace, "own", "inputs", "outputs")

struct SDropCommand {
    std::string strHandle;
    unsigned nParam = 0;
    std::vector<EPlace> from;
};

struct SLinkCommand : SLinkDocument {};

struct SUnlinkCommand : SLinkDocument {};

// ---- The machine around the nodes -------------------------------------------------------------------------------

struct SKeysCommand {
    KeySet down;
    KeySet toggled;
};

struct SClockCommand {
    std::optional<std::uint64_t> ms = {}; ///< none: real time again
};

struct SMainWindowCommand {
    bool bPresent = false;
    bool bEnabled = false;
};

/// Adds one.
struct SObjectCommand {
    CString strClip;
    CString strName;
    std::optional<std::array<float, 16>> matrix = {}; ///< none: where a new object stands
};

struct SChangeObjectCommand {
    CString strClip;
    CString strName;
    std::optional<CString> newName = {};
    std::optional<std::array<float, 16>> matrix = {};
};

struct SRemoveObjectCommand {
    CString strClip;
    CString strName;
};

struct SObjectsCommand {};

// ---- The network ------------------------------------------------------------------------------------------------

struct SDevicesCommand {
    DeviceSetups devices;
};

/// Adds the device, or changes the one of its id.
struct SDeviceCommand : SDeviceSetup {
    bool bNew = false; ///< refused where there is a device of the id
    SDeviceCommand() { dropAfter = std::chrono::seconds(2); }
};

struct SRemoveDeviceCommand {
    int nId = 0;
};

struct SConnectCommand {
    int nId = 0;
};

struct SSendCommand {
    int nId = 0;
    std::string strText;
};

struct SListenCommand {
    std::optional<std::string> address = {}; ///< numeric; none: broadcasts from anywhere, records from this machine
    std::optional<std::optional<unsigned short>> broadcast =
        {};                                     ///< UDP port, or none; without one: the configured port
    std::optional<unsigned short> control = {}; ///< TCP port, 0: any; none: isn't listened on
};

struct SWaitCommand {
    unsigned nMilliseconds = 0;
};

struct SNetworkCommand {};

struct SListenOnlyCommand {
    bool bOn = false;
};

// ---- The log, and what nodes did ----------------------------------------------------------------------------------

struct SLogCommand {
    unsigned long long nAfter = 0; ///< number of the last line that is known already
};

struct SCountersCommand {};

struct SResetCountersCommand {
    std::optional<std::string> handle = {}; ///< none: all nodes
};

// ---- Building the scene -----------------------------------------------------------------------------------------

/// Where nodes and notes stand on the canvas.
struct SPlaceCommand {
    std::vector<std::pair<std::string, SPlace>> nodes = {};               ///< by handle
    std::vector<std::pair<std::string, std::optional<SNote>>> notes = {}; ///< by id; none: it goes
    std::string strSeries = {}; ///< with those of the same series before it, it's one step
};

struct SCommands;

/// All of it or nothing, as one step.
struct SBatchCommand {
    std::optional<std::string> name = {};       ///< of the step
    std::shared_ptr<const SCommands> pCommands; ///< never null; each may be part of a batch
};

struct SUndoCommand {
    std::optional<unsigned long long> to = {}; ///< number of the state to go to; none: one step
};

struct SRedoCommand {
    std::optional<unsigned long long> to = {};
};

struct SHistoryCommand {};

// ---- The scene as a whole, and recordings -----------------------------------------------------------------------

/// The result is the scene; whoever gave the command stores it.
struct SSaveCommand {
    std::string strFile;  ///< where it is stored
    bool bReplace = true; ///< false: refused when the file is there and isn't this scene's own
};

struct SLoadCommand {
    std::shared_ptr<const SSceneDocument> pScene; ///< never null
    std::string strPath = "scene";                ///< what refusals call it: "scene" or "file"
    std::string strFile = {};                     ///< its name; empty: it's no file's
    bool bUnsaved = false;                        ///< the file has an older one
    bool bStep = true;                            ///< false: the history begins with it
};

/// The files of the folder of scenes: whoever asked fills the result in.
struct SScenesCommand {};

/// What an earlier host left unsaved is forgotten. Taking it is SLoadCommand.
struct SRecoverCommand {};

struct SSceneCommand {};

struct SJsonCommand {};

struct SRecordingCommand {
    int nVersion = 0;
    ETextTable nTexts = ETextTable::Keys;
    EEvaluation nEvaluation = EEvaluation::Frame;
    bool bRounding = false; ///< links bring whole numbers from floats
};

using Command =
    std::variant<SCatalogueCommand, SCallCommand, SCreateCommand, SInspectCommand, SInitCommand, SOutputsCommand,
                 SEvaluateCommand, SProcessCommand, SFrameCommand, SEventCommand, SJsonCommand, SReleaseHeldCommand,
                 SSetCommand, SEditCommand, STriggerCommand, SDropCommand, SLinkCommand, SUnlinkCommand, SKeysCommand,
                 SClockCommand, SMainWindowCommand, SObjectCommand, SObjectsCommand, SDevicesCommand, SDeviceCommand,
                 SRemoveDeviceCommand, SConnectCommand, SSendCommand, SListenCommand, SWaitCommand, SNetworkCommand,
                 SListenOnlyCommand, SLogCommand, SCountersCommand, SLayoutCommand, SDestroyCommand, SSaveCommand,
                 SLoadCommand, SSceneCommand, SRecordingCommand, SQuitCommand, SRenameCommand, SPlaceCommand,
                 SChangeObjectCommand, SRemoveObjectCommand, SBatchCommand, SUndoCommand, SRedoCommand, SHistoryCommand,
                 SScenesCommand, SRecoverCommand, SResetCountersCommand, SInspectNodesCommand>;

struct SCommands {
    std::vector<Command> list;
};

template <typename Kind, typename... Kinds>
inline constexpr bool IS_ONE_OF = (std::is_same_v<Kind, Kinds> || ...);

/// Whether commands of a kind can be part of a batch: each is a step of the scene's history.
template <typename Kind>
inline constexpr bool FITS_BATCH =
    IS_ONE_OF<Kind, SInitCommand, SOutputsCommand, SSetCommand, SEditCommand, SDropCommand, SCreateCommand,
              SLinkCommand, SUnlinkCommand, SObjectCommand, SChangeObjectCommand, SRemoveObjectCommand, SDevicesCommand,
              SDeviceCommand, SRemoveDeviceCommand, SDestroyCommand, SRenameCommand, SPlaceCommand>;

/// Whether the scene's version counts commands of a kind. Not those of SObjectCommand: it never
/// counted, and recorded replies hold the version.
template <typename Kind>
inline constexpr bool CHANGES_SCENE =
    (FITS_BATCH<Kind> && !std::is_same_v<Kind, SObjectCommand>) ||
    IS_ONE_OF<Kind, STriggerCommand, SLoadCommand, SBatchCommand, SUndoCommand, SRedoCommand, SQuitCommand>;
