// The JSON of everything that a session takes and tells: docs/session-protocol.md in tables.
#pragma once

#include "protocol/Shape.h"

#include "session/Outcome.h"

// ---- Parameters, nodes, scenes ------------------------------------------------------------------------------------

SHAPE(SParamState, SField{"id", &T::nId}, SField{"name", &T::name, FIELD_OPTIONAL},
      SField{"display", &T::display, FIELD_OPTIONAL}, SField{"type", &T::type, FIELD_OPTIONAL},
      SField{"control", &T::control, FIELD_OPTIONAL}, SField{"range", &T::range, FIELD_OPTIONAL | FIELD_NULLABLE},
      SField{"flags", &T::flags, FIELD_OPTIONAL | FIELD_NULLABLE}, SField{"int", &T::integer, FIELD_OPTIONAL},
      SField{"float", &T::number, FIELD_OPTIONAL}, SField{"string", &T::text, FIELD_OPTIONAL},
      SField{"length", &T::length, FIELD_OPTIONAL | FIELD_TOLD}, SField{"choices", &T::choices, FIELD_OPTIONAL},
      SField{"available", &T::available, FIELD_OPTIONAL}, SField{"extra", &T::extra, FIELD_OPTIONAL | FIELD_TOLD})
SHAPE(SGroupState, SField{"id", &T::nId}, SField{"name", &T::name, FIELD_OPTIONAL},
      SField{"display", &T::display, FIELD_OPTIONAL}, SField{"params", &T::params})
SHAPE(SValues, SField{"int", &T::nInteger}, SField{"float", &T::fNumber}, SField{"string", &T::strText},
      SField{"length", &T::length, FIELD_OPTIONAL})
SHAPE(SNodeDetails, SField{"type", &T::guidType}, SField{"kind_code", &T::nKindCode}, SField{"name", &T::strName},
      SField{"second_name", &T::strSecondName}, SField{"own", &T::own}, SField{"inputs", &T::inputs},
      SField{"outputs", &T::outputs})
SHAPE(SNodesDetails, SField{"nodes", &T::nodes})
SHAPE(SPlace, SField{"x", &T::fX}, SField{"y", &T::fY}, SField{"folded", &T::bFolded, FIELD_OPTIONAL})
SHAPE(SNote, SField{"x", &T::fX}, SField{"y", &T::fY}, SField{"width", &T::fWidth}, SField{"height", &T::fHeight},
      SField{"text", &T::strText}, SField{"length", &T::length, FIELD_OPTIONAL})
SHAPE(SSceneNode, SField{"node", &T::strHandle}, SField{"type", &T::guidType}, SField{"clip", &T::clip, FIELD_NULLABLE},
      SField{"graph", &T::strGraph}, SField{"name", &T::strName}, SField{"place", &T::place, FIELD_OPTIONAL})
SHAPE(SLinkDocument, SField{"from", &T::strFrom}, SField{"output", &T::nOutput}, SField{"to", &T::strTo},
      SField{"input", &T::nInput})
SHAPE(SSceneView, SField{"version", &T::nVersion}, SField{"nodes", &T::nodes}, SField{"links", &T::links},
      SField{"notes", &T::notes, FIELD_OPTIONAL})
SHAPE(SObjectState, SField{"clip", &T::strClip}, SField{"name", &T::strName}, SField{"matrix", &T::matrix})
SHAPE(SObjectDocument, SField{"name", &T::strName}, SField{"matrix", &T::matrix, FIELD_OPTIONAL})
SHAPE(SClipDocument, SField{"name", &T::strName}, SField{"objects", &T::objects})
SHAPE(SNodeDocument, SField{"node", &T::strHandle}, SField{"type", &T::guidType},
      SField{"clip", &T::clip, FIELD_NULLABLE}, SField{"graph", &T::strGraph},
      SField{"event_window", &T::bEventWindow, FIELD_DEFAULTED},
      SField{"notify_window", &T::bNotifyWindow, FIELD_DEFAULTED}, SField{"own", &T::own, FIELD_OPTIONAL},
      SField{"inputs", &T::inputs, FIELD_OPTIONAL}, SField{"outputs", &T::outputs, FIELD_OPTIONAL},
      SField{"place", &T::place, FIELD_OPTIONAL})

template <>
struct Codec<asio::ip::tcp::endpoint> { ///< 127.0.0.1:9000
    static void Read(asio::ip::tcp::endpoint& value, const Json& json, const std::string& strPath);
    static void Write(CJsonText& json, const asio::ip::tcp::endpoint& value) { json.Value(EndpointText(value)); }
};

template <>
struct Codec<std::chrono::milliseconds> { ///< in seconds
    static void Read(std::chrono::milliseconds& value, const Json& json, const std::string& strPath);
    static void Write(CJsonText& json, std::chrono::milliseconds value);
};

SHAPE(SDeviceSetup, SField{"id", &T::nId}, SField{"name", &T::strName}, SField{"parser", &T::nParser},
      SField{"address", &T::address, FIELD_DEFAULTED | FIELD_NULLABLE},
      SField{"drop_after", &T::dropAfter, FIELD_OPTIONAL})

/// Without "format" and "version", which are a file's.
SHAPE(SSceneDocument, SField{"clips", &T::clips, FIELD_DEFAULTED}, SField{"nodes", &T::nodes, FIELD_DEFAULTED},
      SField{"links", &T::links, FIELD_DEFAULTED}, SField{"devices", &T::devices, FIELD_OPTIONAL | FIELD_NULLABLE},
      SField{"notes", &T::notes, FIELD_OPTIONAL})

// ---- Payloads -----------------------------------------------------------------------------------------------------

TAGGED(SKeyEventData, "key", SField{"text", &T::m_strText})
SHAPE(CPoint, SField{"x", &T::x}, SField{"y", &T::y})
TAGGED(SQORMouseData, "pointer", SField{"rx", &T::m_fRelativeX}, SField{"ry", &T::m_fRelativeY}, SFlat{&T::m_ptPixel},
       SField{"pointer", &T::m_nPointer}, SField{"relative", &T::m_bRelative})
TAGGED(SVRPluginData, "vr", SField{"hand", &T::m_nHand}, SField{"trigger", &T::m_bTriggerPressed},
       SField{"pad", &T::m_bTouchPadPressed}, SField{"padx", &T::m_fTouchPadX}, SField{"pady", &T::m_fTouchPadY},
       SField{"pose", &T::m_fPose}, SField{"hit", &T::m_fHitPosition}, SField{"press", &T::m_nPressTime},
       SField{"release", &T::m_nReleaseTime})
TAGGED(SBroadcastItem, "broadcast", SField{"flag", &T::m_strFlag}, SField{"clip", &T::m_strClipName},
       SField{"name", &T::m_strName}, SField{"data", &T::m_strData})
TAGGED(CQORPanelRemoteCtrlData, "record", SField{"DevID", &T::m_strDevID}, SField{"DevName", &T::m_strDevName},
       SField{"ClipName", &T::m_strClipName}, SField{"GroupName", &T::m_strGroupName},
       SField{"KeyName", &T::m_strKeyName}, SField{"KeyNumber", &T::m_nKeyNumber},
       SField{"HelpParameter", &T::m_strHelpParameter}, SField{"KeyValue", &T::m_strKeyValue},
       SField{"Layer", &T::m_nLayer})
TAGGED(SDeviceTextData, "device_text", SField{"device", &T::m_nDeviceId}, SField{"text", &T::m_strText})
TAGGED(SObjectTextData, "object_text", SField{"clip", &T::m_strClipName}, SField{"object", &T::m_strObjectName},
       SField{"text", &T::m_strText})

void ReadFields(SQORMouseData& sample, const CFields& fields);

template <>
inline void Emplace<SQORMouseData>(Payload& payload) {
    payload.emplace<SQORMouseData>(0, 0.0f, 0.0f, CPoint(0, 0), 0);
}

UNION(Payload, "is", "there is no payload kind ")

/// A scene file's content; refusals name the fields behind strPath.
std::shared_ptr<const SSceneDocument> ReadScene(const Json& json, const std::string& strPath);
void WriteScene(CJsonText& json, const SSceneDocument& scene);

template <>
struct Codec<std::shared_ptr<const SSceneDocument>> {
    static void Read(std::shared_ptr<const SSceneDocument>& value, const Json& json, const std::string& strPath) {
        value = ReadScene(json, strPath);
    }
    static void Write(CJsonText& json, const std::shared_ptr<const SSceneDocument>& value) {
        json.Object([&] { WriteScene(json, *value); });
    }
};

/// A parameter's value as one field, named after its kind ("int", "float", ...); exactly one must be there.
void ReadFields(ParamValue& value, const CFields& fields);
void WriteFields(CJsonText& json, const ParamValue& value);

// ---- Commands -----------------------------------------------------------------------------------------------------

SHAPE(SSavedPins, SField{"group", &T::nGroup}, SField{"ids", &T::ids})
SHAPE(SSavedSet, SField{"values", &T::values, FIELD_OPTIONAL}, SField{"drop", &T::drop, FIELD_OPTIONAL},
      SField{"available", &T::available, FIELD_OPTIONAL}, SField{"choices", &T::emptyChoices, FIELD_OPTIONAL},
      SField{"groups", &T::bGroups, FIELD_OPTIONAL}, SField{"pins", &T::pins, FIELD_OPTIONAL})
TAGGED(SCatalogueCommand, "catalogue")
TAGGED(SCallCommand, "call", SField{"code", &T::nCode})
TAGGED(SCreateCommand, "create", SField{"node", &T::strHandle}, SField{"type", &T::guidType},
       SField{"clip", &T::clip, FIELD_NULLABLE}, SField{"graph", &T::strGraph},
       SField{"event_window", &T::bEventWindow, FIELD_OPTIONAL},
       SField{"notify_window", &T::bNotifyWindow, FIELD_OPTIONAL}, SField{"outputs", &T::bOutputs, FIELD_OPTIONAL},
       SField{"saved", &T::saved, FIELD_OPTIONAL})
TAGGED(SInspectCommand, "inspect", SField{"node", &T::strHandle})
TAGGED(SInspectNodesCommand, "inspect_nodes", SField{"nodes", &T::handles})
TAGGED(SInitCommand, "init", SField{"node", &T::strHandle})
TAGGED(SOutputsCommand, "outputs", SField{"node", &T::strHandle})
TAGGED(SLayoutCommand, "layout", SField{"node", &T::strHandle})
TAGGED(SDestroyCommand, "destroy", SField{"node", &T::strHandle}, SField{"type", &T::type, FIELD_OPTIONAL},
       SField{"pointer", &T::bPointer, FIELD_OPTIONAL})
TAGGED(SEvaluateCommand, "evaluate", SField{"on", &T::nOn})
TAGGED(SProcessCommand, "process", SField{"node", &T::handle, FIELD_OPTIONAL},
       SField{"graph", &T::bGraph, FIELD_OPTIONAL})
TAGGED(SJsonCommand, "json")
SHAPE(SHeldFilter, SField{"device", &T::device, FIELD_OPTIONAL}, SField{"identity", &T::identity, FIELD_OPTIONAL})
TAGGED(SReleaseHeldCommand, "release_held", SField{"reason", &T::strReason, FIELD_OPTIONAL}, SFlat{&T::filter},
       SField{"everyone", &T::bEveryone, FIELD_OPTIONAL})
TAGGED(SSetCommand, "set", SField{"node", &T::strHandle}, SField{"param", &T::nParam},
       SField{"own", &T::bOwn, FIELD_OPTIONAL}, SFlat{&T::value}, SField{"step", &T::bStep, FIELD_OPTIONAL})
TAGGED(SEditCommand, "edit", SField{"node", &T::strHandle}, SField{"param", &T::nParam},
       SField{"own", &T::bOwn, FIELD_OPTIONAL}, SFlat{&T::value})
TAGGED(STriggerCommand, "trigger", SField{"node", &T::strHandle}, SField{"param", &T::nParam})
TAGGED(SDropCommand, "drop", SField{"node", &T::strHandle}, SField{"param", &T::nParam}, SField{"from", &T::from})
TAGGED(SLinkCommand, "link", SField{"from", &T::strFrom}, SField{"output", &T::nOutput}, SField{"to", &T::strTo},
       SField{"input", &T::nInput})
TAGGED(SUnlinkCommand, "unlink", SField{"from", &T::strFrom}, SField{"output", &T::nOutput}, SField{"to", &T::strTo},
       SField{"input", &T::nInput})
TAGGED(SKeysCommand, "keys", SField{"down", &T::down, FIELD_OPTIONAL}, SField{"toggled", &T::toggled, FIELD_OPTIONAL})
TAGGED(SClockCommand, "clock", SField{"ms", &T::ms, FIELD_NULLABLE})
TAGGED(SMainWindowCommand, "main_window", SField{"present", &T::bPresent}, SField{"enabled", &T::bEnabled})
TAGGED(SObjectCommand, "object", SField{"clip", &T::strClip}, SField{"name", &T::strName},
       SField{"matrix", &T::matrix, FIELD_OPTIONAL})
TAGGED(SChangeObjectCommand, "change_object", SField{"clip", &T::strClip}, SField{"name", &T::strName},
       SField{"to", &T::newName, FIELD_OPTIONAL}, SField{"matrix", &T::matrix, FIELD_OPTIONAL})
TAGGED(SRemoveObjectCommand, "remove_object", SField{"clip", &T::strClip}, SField{"name", &T::strName})
TAGGED(SObjectsCommand, "objects")
TAGGED(SDevicesCommand, "devices", SField{"list", &T::devices, FIELD_NULLABLE})
TAGGED(SDeviceCommand, "device", SField{"device", &T::nId}, SField{"name", &T::strName}, SField{"parser", &T::nParser},
       SField{"address", &T::address, FIELD_DEFAULTED | FIELD_NULLABLE},
       SField{"drop_after", &T::dropAfter, FIELD_DEFAULTED | FIELD_NULLABLE}, SField{"new", &T::bNew, FIELD_OPTIONAL})
TAGGED(SRemoveDeviceCommand, "remove_device", SField{"device", &T::nId})
TAGGED(SConnectCommand, "connect", SField{"device", &T::nId})
TAGGED(SSendCommand, "send", SField{"device", &T::nId}, SField{"text", &T::strText})
TAGGED(SListenCommand, "listen", SField{"broadcast", &T::broadcast, FIELD_OPTIONAL},
       SField{"control", &T::control, FIELD_OPTIONAL | FIELD_NULLABLE}, SField{"address", &T::address, FIELD_OPTIONAL})
TAGGED(SWaitCommand, "wait", SField{"ms", &T::nMilliseconds})
TAGGED(SNetworkCommand, "network")
TAGGED(SListenOnlyCommand, "listen_only", SField{"on", &T::bOn})
TAGGED(SLogCommand, "log", SField{"after", &T::nAfter, FIELD_OPTIONAL})
TAGGED(SCountersCommand, "counters")
TAGGED(SResetCountersCommand, "reset_counters", SField{"node", &T::handle, FIELD_OPTIONAL})
TAGGED(SRenameCommand, "rename", SField{"node", &T::strHandle}, SField{"graph", &T::strGraph})
TAGGED(SPlaceCommand, "place", SField{"nodes", &T::nodes, FIELD_OPTIONAL}, SField{"notes", &T::notes, FIELD_OPTIONAL},
       SField{"series", &T::strSeries, FIELD_OPTIONAL})
TAGGED(SUndoCommand, "undo", SField{"to", &T::to, FIELD_OPTIONAL})
TAGGED(SRedoCommand, "redo", SField{"to", &T::to, FIELD_OPTIONAL})
TAGGED(SLoadCommand, "load", SField{"scene", &T::pScene}, SField{"name", &T::strFile, FIELD_OPTIONAL},
       SField{"unsaved", &T::bUnsaved, FIELD_OPTIONAL}, SField{"step", &T::bStep, FIELD_OPTIONAL})
TAGGED(SHistoryCommand, "history")
TAGGED(SScenesCommand, "scenes")
TAGGED(SRecoverCommand, "recover")
TAGGED(SSaveCommand, "save", SField{"file", &T::strFile}, SField{"replace", &T::bReplace, FIELD_OPTIONAL})
TAGGED(SSceneCommand, "scene")
TAGGED(SRecordingCommand, "recording", SField{"version", &T::nVersion}, SField{"texts", &T::nTexts},
       SField{"evaluate", &T::nEvaluation, FIELD_OPTIONAL}, SField{"rounding", &T::bRounding, FIELD_OPTIONAL})
TAGGED(SQuitCommand, "quit")
TAGGED(SBatchCommand, "batch", SField{"name", &T::name, FIELD_OPTIONAL}, SField{"requests", &T::pCommands})
UNION(Command, "op", "unknown op ")
TAG(SFrameCommand, "process")
TAG(SEventCommand, "event")

// Commands whose fields depend on one another.
void ReadFields(SFrameCommand& command, const CFields& fields);
void ReadFields(SEventCommand& command, const CFields& fields);
void ReadFields(SSavedSet& saved, const CFields& fields);
void WriteFields(CJsonText& json, const SFrameCommand& command);
void WriteFields(CJsonText& json, const SEventCommand& command);

template <>
struct Codec<std::shared_ptr<const SCommands>> {
    static void Read(std::shared_ptr<const SCommands>& value, const Json& json, const std::string& strPath);
    static void Write(CJsonText& json, const std::shared_ptr<const SCommands>& value) { WriteJson(json, value->list); }
};

// ---- What the module did ------------------------------------------------------------------------------------------

void WriteFields(CJsonText& json, const SFiredByWindow& fired);

TAGGED(SFiredByHost, "host", SField{"clip", &T::clip, FIELD_NULLABLE}, SField{"object", &T::object, FIELD_NULLABLE})

using FiredBy = decltype(SFired::by);
UNION(FiredBy, "via")
TAG(SFiredByWindow, "window")
SHAPE(SFired, SField{"node", &T::handle, FIELD_NULLABLE}, SField{"output", &T::output, FIELD_NULLABLE}, SFlat{&T::by})
SHAPE(SLogged, SField{"level", &T::nLevel}, SField{"args", &T::arguments}, SField{"text", &T::strText},
      SField{"length", &T::length, FIELD_OPTIONAL})
SHAPE(SNotified, SField{"node", &T::handle, FIELD_NULLABLE}, SField{"wparam", &T::nWParam},
      SField{"lparam", &T::nLParam})
SHAPE(SSentRecord, SField{"device", &T::nDevice}, SField{"command", &T::nCommand},
      SField{"clip", &T::clip, FIELD_NULLABLE}, SField{"record", &T::record})
SHAPE(SSentBytes, SField{"device", &T::nDevice}, SField{"raw", &T::bytes}, SField{"size", &T::size, FIELD_OPTIONAL})
SHAPE(SRedrawn, SField{"node", &T::handle, FIELD_NULLABLE})
SHAPE(SActivity, SField{"posted", &T::fired, FIELD_OPTIONAL}, SField{"log", &T::logged, FIELD_OPTIONAL},
      SField{"notified", &T::notified, FIELD_OPTIONAL}, SField{"sent", &T::sent, FIELD_OPTIONAL},
      SField{"redrawn", &T::redrawn, FIELD_OPTIONAL})

// ---- Results ------------------------------------------------------------------------------------------------------

SHAPE(std::monostate)
SHAPE(SNodeType, SField{"guid", &T::guid}, SField{"kind", &T::nKind}, SField{"name", &T::strName},
      SField{"aux", &T::strAux}, SField{"tip", &T::strTip}, SField{"icon", &T::bIcon}, SField{"enable", &T::nEnable},
      SField{"reserved", &T::reserved})
SHAPE(SCatalogue, SField{"types", &T::types})
SHAPE(SCalled, SField{"result", &T::nResult})
SHAPE(SStep, SField{"name", &T::strName}, SField{"op", &T::strOp}, SField{"of", &T::strOf, FIELD_OPTIONAL},
      SField{"param", &T::strParam, FIELD_OPTIONAL}, SField{"ms", &T::nTimeMs, FIELD_OPTIONAL})
SHAPE(SStepTaken, SField{"step", &T::step})
SHAPE(SSceneFile, SField{"file", &T::strName, FIELD_NULLABLE}, SField{"unsaved", &T::bUnsaved},
      SField{"saved", &T::saved, FIELD_OPTIONAL})
SHAPE(SSceneFileInfo, SField{"file", &T::strName}, SField{"bytes", &T::nBytes}, SField{"modified_ms", &T::nModifiedMs})
SHAPE(SScenes, SField{"files", &T::files})
SHAPE(SHistoryState, SField{"steps", &T::steps}, SField{"done", &T::nDone}, SField{"states", &T::states},
      SFlat{&T::file})
SHAPE(SCreated, SField{"result", &T::nResult}, SField{"created", &T::bCreated})
SHAPE(SLayout, SField{"path", &T::strPath}, SField{"reader", &T::pReader}, SField{"state", &T::pState},
      SField{"array", &T::pArray}, SField{"groups", &T::nGroups})
SHAPE(SDestroyed, SField{"result", &T::nResult}, SField{"slot_null", &T::bSlotNull}, SField{"freed", &T::bFreed})

inline const std::string& MemberName(const SNode* pNode) {
    return pNode->strHandle;
}

SHAPE(SNodeResults, SField{"results", &T::results})
SHAPE(SFrameResults, SField{"results", &T::results}, SField{"outputs", &T::outputs, FIELD_OPTIONAL})
SHAPE(SEdited, SField{"needed", &T::bNeeded}, SField{"result", &T::result, FIELD_NULLABLE})
SHAPE(SReleased, SField{"released", &T::releases})
SHAPE(SListening, SField{"broadcast", &T::broadcast, FIELD_NULLABLE}, SField{"control", &T::control, FIELD_NULLABLE})
SHAPE(SItemCounts, SField{"received", &T::nReceived}, SField{"matched", &T::nMatched},
      SField{"rejected", &T::nRejected}, SField{"last_rejected", &T::strLastRejected, FIELD_NULLABLE})
SHAPE(SDeviceState, SFlat{&T::setup}, SField{"state", &T::nState}, SField{"since_ms", &T::nSinceMs},
      SField{"last_problem", &T::strLastProblem, FIELD_NULLABLE}, SField{"queued_items", &T::nQueuedItems},
      SField{"queued_bytes", &T::nQueuedBytes}, SField{"sent", &T::nSent}, SField{"refused", &T::nRefused},
      SField{"lost", &T::nLost}, SField{"dropped", &T::nDropped, FIELD_OPTIONAL}, SField{"shown", &T::nShown},
      SField{"errors", &T::nErrors}, SField{"received_bytes", &T::nReceivedBytes}, SFlat{&T::counts},
      SField{"rejected_lines", &T::rejectedLines, FIELD_OPTIONAL},
      SField{"last_sent_bytes", &T::lastSent, FIELD_NULLABLE},
      SField{"last_received_bytes", &T::lastReceived, FIELD_NULLABLE})
SHAPE(SBroadcastState, SField{"port", &T::nPort}, SField{"problem", &T::strProblem, FIELD_NULLABLE},
      SField{"errors", &T::nErrors}, SField{"last_error", &T::strLastError, FIELD_NULLABLE}, SFlat{&T::counts},
      SField{"last_received_bytes", &T::lastReceived, FIELD_NULLABLE})
SHAPE(SControlState, SField{"port", &T::nPort}, SField{"connections", &T::nConnections},
      SField{"turned_away", &T::nTurnedAway}, SField{"errors", &T::nErrors},
      SField{"last_error", &T::strLastError, FIELD_NULLABLE}, SFlat{&T::counts})
SHAPE(SNetworkState, SField{"devices", &T::devices, FIELD_NULLABLE}, SField{"broadcast", &T::broadcast, FIELD_NULLABLE},
      SField{"control", &T::control, FIELD_NULLABLE}, SField{"listen_only", &T::bListenOnly})
SHAPE(SDispatched, SField{"from", &T::nFrom}, SField{"device", &T::nDevice}, SField{"event", &T::nEvent},
      SFlat{&T::results})
SHAPE(SWaited, SField{"dispatched", &T::dispatched})
SHAPE(SObjects, SField{"objects", &T::objects})
SHAPE(SHeldEntry, SField{"connection", &T::nConnection}, SField{"device", &T::nDevice}, SField{"what", &T::strWhat},
      SField{"identity", &T::identity}, SField{"ms", &T::nAgeMs})
TAGGED(SOtherDevice, "other_device", SField{"device", &T::nDevice}, SField{"expected", &T::nExpected})
TAGGED(SOtherObject, "other_object", SField{"clip", &T::strClip}, SField{"object", &T::strObject},
       SField{"expected_clip", &T::strExpectedClip}, SField{"expected_object", &T::strExpectedObject})
TAGGED(SKeyMissing, "key_missing", SField{"key", &T::strKey})
TAGGED(SValueDiffers, "value_differs", SField{"key", &T::strKey}, SField{"value", &T::strValue},
       SField{"expected", &T::strExpected})
TAGGED(STaken, "taken")
TAGGED(SNotJson, "not_json")
TAGGED(SNotObject, "not_object")
TAGGED(SNotReady, "not_ready")

using VerdictKind = decltype(SVerdict::what);
UNION(VerdictKind, "verdict")
SHAPE(SVerdict, SFlat{&T::what}, SField{"text", &T::strText}, SField{"length", &T::nLength})
SHAPE(SVerdicts, SField{"nodes", &T::nodes})
SHAPE(SKeptLine, SField{"n", &T::nNumber}, SField{"ms", &T::nTimeMs}, SFlat{&T::line})
SHAPE(SLogLines, SField{"lines", &T::lines})
SHAPE(SNodeCounts, SField{"fired", &T::nFired}, SField{"received", &T::nReceived}, SField{"matched", &T::nMatched},
      SField{"rejected", &T::nRejected}, SField{"sent", &T::nSent}, SField{"dropped", &T::nDropped},
      SField{"outputs", &T::outputs, FIELD_OPTIONAL})
SHAPE(SCounters, SField{"nodes", &T::nodes}, SField{"idle_ms", &T::idle, FIELD_OPTIONAL})
SHAPE(SDroppedItems, SField{"node", &T::sender, FIELD_NULLABLE}, SField{"device", &T::nDevice},
      SField{"items", &T::nItems})

// ---- Values of their own kind -------------------------------------------------------------------------------------

template <>
struct Codec<Payload> { ///< null for none
    static void Read(Payload& value, const Json& json, const std::string& strPath);
    static void Write(CJsonText& json, const Payload& value);
};

/// A number or a text: the value of a parameter, or what tells held things apart.
template <>
struct Codec<ParamValue> : SUntaggedCodec<ParamValue> {
    static void Read(ParamValue& value, const Json& json, const std::string& strPath);
};
template <>
struct Codec<HeldIdentity> : SUntaggedCodec<HeldIdentity> {
    static void Read(HeldIdentity& value, const Json& json, const std::string& strPath);
};
template <>
struct Codec<Sent> : SUntaggedCodec<Sent> {};

/// A list of virtual-key codes.
template <>
struct Codec<KeySet> {
    static void Read(KeySet& value, const Json& json, const std::string& strPath);
    static void Write(CJsonText& json, const KeySet& value);
};

/// {"device","event","payload"} or {"virtual_key"}
template <>
struct Codec<SRelease> {
    static void Write(CJsonText& json, const SRelease& value);
};

template <>
struct Codec<std::vector<unsigned char>> { ///< in hexadecimal
    static void Write(CJsonText& json, const std::vector<unsigned char>& value);
};

template <>
struct Codec<const void*> { ///< an address as text
    static void Write(CJsonText& json, const void* value);
};

template <>
struct Codec<LineRefusalCounts> { ///< an object
    static void Write(CJsonText& json, const LineRefusalCounts& value);
};

template <>
struct Codec<SLastBytes> { ///< {"size","text","hex"}, and "sent" of one to a device
    static void Write(CJsonText& json, const SLastBytes& value);
};
