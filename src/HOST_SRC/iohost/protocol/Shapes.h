// The JSON of everything that a session takes and tells: docs/session-protocol.md in tables.
#pragma once

#include "protocol/Shape.h"

#include "base/TextTables.h"
#include "protocol/NetworkJson.h"
#include "session/Outcome.h"

// ---- Parameters, nodes, scenes ------------------------------------------------------------------------------------

SHAPE(SParamState, SField{"id", &SParamState::nId}, SField{"name", &SParamState::name, FIELD_OPTIONAL},
      SField{"display", &SParamState::display, FIELD_OPTIONAL}, SField{"type", &SParamState::type, FIELD_OPTIONAL},
      SField{"control", &SParamState::control, FIELD_OPTIONAL},
      SField{"range", &SParamState::range, FIELD_OPTIONAL | FIELD_NULLABLE},
      SField{"flags", &SParamState::flags, FIELD_OPTIONAL | FIELD_NULLABLE},
      SField{"int", &SParamState::integer, FIELD_OPTIONAL}, SField{"float", &SParamState::number, FIELD_OPTIONAL},
      SField{"string", &SParamState::text, FIELD_OPTIONAL},
      SField{"length", &SParamState::length, FIELD_OPTIONAL | FIELD_TOLD},
      SField{"choices", &SParamState::choices, FIELD_OPTIONAL},
      SField{"available", &SParamState::available, FIELD_OPTIONAL},
      SField{"extra", &SParamState::extra, FIELD_OPTIONAL | FIELD_TOLD})

SHAPE(SGroupState, SField{"id", &SGroupState::nId}, SField{"name", &SGroupState::name, FIELD_OPTIONAL},
      SField{"display", &SGroupState::display, FIELD_OPTIONAL}, SField{"params", &SGroupState::params})

SHAPE(SValues, SField{"int", &SValues::nInteger}, SField{"float", &SValues::fNumber},
      SField{"string", &SValues::strText}, SField{"length", &SValues::length, FIELD_OPTIONAL})

SHAPE(SNodeDetails, SField{"type", &SNodeDetails::guidType}, SField{"kind_code", &SNodeDetails::nKindCode},
      SField{"name", &SNodeDetails::strName}, SField{"second_name", &SNodeDetails::strSecondName},
      SField{"own", &SNodeDetails::own}, SField{"inputs", &SNodeDetails::inputs},
      SField{"outputs", &SNodeDetails::outputs})

SHAPE(SSceneNode, SField{"node", &SSceneNode::strHandle}, SField{"type", &SSceneNode::guidType},
      SField{"clip", &SSceneNode::clip, FIELD_NULLABLE}, SField{"graph", &SSceneNode::strGraph},
      SField{"name", &SSceneNode::strName})

SHAPE(SLinkDocument, SField{"from", &SLinkDocument::strFrom}, SField{"output", &SLinkDocument::nOutput},
      SField{"to", &SLinkDocument::strTo}, SField{"input", &SLinkDocument::nInput})

SHAPE(SSceneView, SField{"version", &SSceneView::nVersion}, SField{"nodes", &SSceneView::nodes},
      SField{"links", &SSceneView::links})

SHAPE(SObjectState, SField{"clip", &SObjectState::strClip}, SField{"name", &SObjectState::strName},
      SField{"matrix", &SObjectState::matrix})

SHAPE(SObjectDocument, SField{"name", &SObjectDocument::strName},
      SField{"matrix", &SObjectDocument::matrix, FIELD_OPTIONAL})

SHAPE(SClipDocument, SField{"name", &SClipDocument::strName}, SField{"objects", &SClipDocument::objects})

SHAPE(SNodeDocument, SField{"node", &SNodeDocument::strHandle}, SField{"type", &SNodeDocument::guidType},
      SField{"clip", &SNodeDocument::clip, FIELD_NULLABLE}, SField{"graph", &SNodeDocument::strGraph},
      SField{"event_window", &SNodeDocument::bEventWindow, FIELD_DEFAULTED},
      SField{"notify_window", &SNodeDocument::bNotifyWindow, FIELD_DEFAULTED},
      SField{"own", &SNodeDocument::own, FIELD_OPTIONAL}, SField{"inputs", &SNodeDocument::inputs, FIELD_OPTIONAL},
      SField{"outputs", &SNodeDocument::outputs, FIELD_OPTIONAL})

/// [{"id","name","parser","address"}]
template <>
struct Codec<std::vector<SDeviceSetup>> {
    static void Read(std::vector<SDeviceSetup>& value, const Json& json, const std::string& strPath) {
        value = *ReadDevices(json, strPath);
    }
    static OrderedJson Write(const std::vector<SDeviceSetup>& value) { return DevicesToJson(value); }
};

/// Without "format" and "version", which are a file's.
SHAPE(SSceneDocument, SField{"clips", &SSceneDocument::clips, FIELD_DEFAULTED},
      SField{"nodes", &SSceneDocument::nodes, FIELD_DEFAULTED},
      SField{"links", &SSceneDocument::links, FIELD_DEFAULTED},
      SField{"devices", &SSceneDocument::devices, FIELD_OPTIONAL | FIELD_NULLABLE})

// ---- Payloads -----------------------------------------------------------------------------------------------------

SHAPE(SKeyEventData, SField{"text", &SKeyEventData::m_strText})

SHAPE(CPoint, SField{"x", &CPoint::x}, SField{"y", &CPoint::y})

SHAPE(SQORMouseData, SField{"rx", &SQORMouseData::m_fRelativeX}, SField{"ry", &SQORMouseData::m_fRelativeY},
      SFlat{&SQORMouseData::m_ptPixel}, SField{"pointer", &SQORMouseData::m_nPointer},
      SField{"relative", &SQORMouseData::m_bRelative})

SHAPE(SVRPluginData, SField{"hand", &SVRPluginData::m_nHand}, SField{"trigger", &SVRPluginData::m_bTriggerPressed},
      SField{"pad", &SVRPluginData::m_bTouchPadPressed}, SField{"padx", &SVRPluginData::m_fTouchPadX},
      SField{"pady", &SVRPluginData::m_fTouchPadY}, SField{"pose", &SVRPluginData::m_fPose},
      SField{"hit", &SVRPluginData::m_fHitPosition}, SField{"press", &SVRPluginData::m_nPressTime},
      SField{"release", &SVRPluginData::m_nReleaseTime})

SHAPE(SBroadcastItem, SField{"flag", &SBroadcastItem::m_strFlag}, SField{"clip", &SBroadcastItem::m_strClipName},
      SField{"name", &SBroadcastItem::m_strName}, SField{"data", &SBroadcastItem::m_strData})

SHAPE(CQORPanelRemoteCtrlData, SField{"DevID", &CQORPanelRemoteCtrlData::m_strDevID},
      SField{"DevName", &CQORPanelRemoteCtrlData::m_strDevName},
      SField{"ClipName", &CQORPanelRemoteCtrlData::m_strClipName},
      SField{"GroupName", &CQORPanelRemoteCtrlData::m_strGroupName},
      SField{"KeyName", &CQORPanelRemoteCtrlData::m_strKeyName},
      SField{"KeyNumber", &CQORPanelRemoteCtrlData::m_nKeyNumber},
      SField{"HelpParameter", &CQORPanelRemoteCtrlData::m_strHelpParameter},
      SField{"KeyValue", &CQORPanelRemoteCtrlData::m_strKeyValue}, SField{"Layer", &CQORPanelRemoteCtrlData::m_nLayer})

SHAPE(SDeviceTextData, SField{"device", &SDeviceTextData::m_nDeviceId}, SField{"text", &SDeviceTextData::m_strText})

SHAPE(SObjectTextData, SField{"clip", &SObjectTextData::m_strClipName},
      SField{"object", &SObjectTextData::m_strObjectName}, SField{"text", &SObjectTextData::m_strText})

void ReadFields(SQORMouseData& sample, const CFields& fields);

template <>
inline void Emplace<SQORMouseData>(Payload& payload) {
    payload.emplace<SQORMouseData>(0, 0.0f, 0.0f, CPoint(0, 0), 0);
}

UNION(Payload, "is", "there is no payload kind ")

TAG(SKeyEventData, "key")
TAG(SQORMouseData, "pointer")
TAG(SVRPluginData, "vr")
TAG(SBroadcastItem, "broadcast")
TAG(CQORPanelRemoteCtrlData, "record")
TAG(SDeviceTextData, "device_text")
TAG(SObjectTextData, "object_text")

// ---- Commands -----------------------------------------------------------------------------------------------------

template <>
struct Names<EPlace> {
    static constexpr const char* ROWS[] = {"own", "inputs", "outputs"};
};

template <>
struct Names<ETextTable> {
    static constexpr const char* ROWS[] = {"keys", "en", "zh"};
};

SHAPE(SSavedPins, SField{"group", &SSavedPins::nGroup}, SField{"ids", &SSavedPins::ids})

SHAPE(SSavedSet, SField{"values", &SSavedSet::values, FIELD_OPTIONAL}, SField{"drop", &SSavedSet::drop, FIELD_OPTIONAL},
      SField{"available", &SSavedSet::available, FIELD_OPTIONAL},
      SField{"choices", &SSavedSet::emptyChoices, FIELD_OPTIONAL},
      SField{"groups", &SSavedSet::bGroups, FIELD_OPTIONAL}, SField{"pins", &SSavedSet::pins, FIELD_OPTIONAL})

SHAPE(SCatalogueCommand)

SHAPE(SCallCommand, SField{"code", &SCallCommand::nCode})

SHAPE(SCreateCommand, SField{"node", &SCreateCommand::strHandle}, SField{"type", &SCreateCommand::guidType},
      SField{"clip", &SCreateCommand::clip, FIELD_NULLABLE}, SField{"graph", &SCreateCommand::strGraph},
      SField{"event_window", &SCreateCommand::bEventWindow, FIELD_OPTIONAL},
      SField{"notify_window", &SCreateCommand::bNotifyWindow, FIELD_OPTIONAL},
      SField{"outputs", &SCreateCommand::bOutputs, FIELD_OPTIONAL},
      SField{"saved", &SCreateCommand::saved, FIELD_OPTIONAL})

SHAPE(SInspectCommand, SField{"node", &SInspectCommand::strHandle})

SHAPE(SInitCommand, SField{"node", &SInitCommand::strHandle})

SHAPE(SOutputsCommand, SField{"node", &SOutputsCommand::strHandle})

SHAPE(SLayoutCommand, SField{"node", &SLayoutCommand::strHandle})

SHAPE(SDestroyCommand, SField{"node", &SDestroyCommand::strHandle},
      SField{"type", &SDestroyCommand::type, FIELD_OPTIONAL},
      SField{"pointer", &SDestroyCommand::bPointer, FIELD_OPTIONAL})

template <>
struct Names<EEvaluation> {
    static constexpr const char* ROWS[] = {"frame", "event"};
};

SHAPE(SEvaluateCommand, SField{"on", &SEvaluateCommand::nOn})

SHAPE(SProcessCommand, SField{"node", &SProcessCommand::handle, FIELD_OPTIONAL},
      SField{"graph", &SProcessCommand::bGraph, FIELD_OPTIONAL})

SHAPE(SJsonCommand)

SHAPE(SHeldFilter, SField{"device", &SHeldFilter::device, FIELD_OPTIONAL},
      SField{"identity", &SHeldFilter::identity, FIELD_OPTIONAL})

SHAPE(SReleaseHeldCommand, SField{"reason", &SReleaseHeldCommand::strReason, FIELD_OPTIONAL},
      SFlat{&SReleaseHeldCommand::filter}, SField{"everyone", &SReleaseHeldCommand::bEveryone, FIELD_OPTIONAL})

SHAPE(STriggerCommand, SField{"node", &STriggerCommand::strHandle}, SField{"param", &STriggerCommand::nParam})

SHAPE(SDropCommand, SField{"node", &SDropCommand::strHandle}, SField{"param", &SDropCommand::nParam},
      SField{"from", &SDropCommand::from})

SHAPE(SLinkCommand, SField{"from", &SLinkCommand::strFrom}, SField{"output", &SLinkCommand::nOutput},
      SField{"to", &SLinkCommand::strTo}, SField{"input", &SLinkCommand::nInput})

SHAPE(SKeysCommand, SField{"down", &SKeysCommand::down, FIELD_OPTIONAL},
      SField{"toggled", &SKeysCommand::toggled, FIELD_OPTIONAL})

SHAPE(SClockCommand, SField{"ms", &SClockCommand::ms, FIELD_NULLABLE})

SHAPE(SMainWindowCommand, SField{"present", &SMainWindowCommand::bPresent},
      SField{"enabled", &SMainWindowCommand::bEnabled})

SHAPE(SObjectCommand, SField{"clip", &SObjectCommand::strClip}, SField{"name", &SObjectCommand::strName})

SHAPE(SObjectsCommand)

SHAPE(SDevicesCommand, SField{"list", &SDevicesCommand::devices, FIELD_NULLABLE})

SHAPE(SListenCommand, SField{"broadcast", &SListenCommand::broadcast, FIELD_OPTIONAL},
      SField{"control", &SListenCommand::control, FIELD_OPTIONAL | FIELD_NULLABLE},
      SField{"address", &SListenCommand::address, FIELD_OPTIONAL})

SHAPE(SWaitCommand, SField{"ms", &SWaitCommand::nMilliseconds})

SHAPE(SNetworkCommand)

SHAPE(SListenOnlyCommand, SField{"on", &SListenOnlyCommand::bOn})

SHAPE(SSaveCommand)

SHAPE(SSceneCommand)

SHAPE(SRecordingCommand, SField{"version", &SRecordingCommand::nVersion}, SField{"texts", &SRecordingCommand::nTexts},
      SField{"evaluate", &SRecordingCommand::nEvaluation, FIELD_OPTIONAL})

SHAPE(SQuitCommand)

UNION(Command, "op", "unknown op ")

TAG(SCatalogueCommand, "catalogue")
TAG(SCallCommand, "call")
TAG(SCreateCommand, "create")
TAG(SInspectCommand, "inspect")
TAG(SInitCommand, "init")
TAG(SOutputsCommand, "outputs")
TAG(SLayoutCommand, "layout")
TAG(SDestroyCommand, "destroy")
TAG(SEvaluateCommand, "evaluate")
TAG(SProcessCommand, "process")
TAG(SFrameCommand, "process")
TAG(SEventCommand, "event")
TAG(SJsonCommand, "json")
TAG(SReleaseHeldCommand, "release_held")
TAG(SSetCommand, "set")
TAG(SEditCommand, "edit")
TAG(STriggerCommand, "trigger")
TAG(SDropCommand, "drop")
TAG(SLinkCommand, "link")
TAG(SKeysCommand, "keys")
TAG(SClockCommand, "clock")
TAG(SMainWindowCommand, "main_window")
TAG(SObjectCommand, "object")
TAG(SObjectsCommand, "objects")
TAG(SDevicesCommand, "devices")
TAG(SListenCommand, "listen")
TAG(SWaitCommand, "wait")
TAG(SNetworkCommand, "network")
TAG(SListenOnlyCommand, "listen_only")
TAG(SSaveCommand, "save")
TAG(SLoadCommand, "load")
TAG(SSceneCommand, "scene")
TAG(SRecordingCommand, "recording")
TAG(SQuitCommand, "quit")

// Commands whose fields depend on one another.
void ReadFields(SFrameCommand& command, const CFields& fields);
void ReadFields(SEventCommand& command, const CFields& fields);
void ReadFields(SSavedSet& saved, const CFields& fields);
void ReadFields(SSetCommand& command, const CFields& fields);
void ReadFields(SEditCommand& command, const CFields& fields);
void ReadFields(SLoadCommand& command, const CFields& fields);
void AppendFields(OrderedJson& json, const SFrameCommand& command);
void AppendFields(OrderedJson& json, const SEventCommand& command);
void AppendFields(OrderedJson& json, const SSetCommand& command);
void AppendFields(OrderedJson& json, const SEditCommand& command);
void AppendFields(OrderedJson& json, const SLoadCommand& command);

/// A scene file's content; refusals name the fields behind strPath.
std::shared_ptr<const SSceneDocument> ReadScene(const Json& json, const std::string& strPath);
OrderedJson SceneToJson(const SSceneDocument& scene);

// ---- What the module did ------------------------------------------------------------------------------------------

void AppendFields(OrderedJson& json, const SFiredByWindow& fired);

SHAPE(SFiredByHost, SField{"clip", &SFiredByHost::clip, FIELD_NULLABLE},
      SField{"object", &SFiredByHost::object, FIELD_NULLABLE})

using FiredBy = decltype(SFired::by);
UNION(FiredBy, "via", "there is no way ")

TAG(SFiredByWindow, "window")
TAG(SFiredByHost, "host")

SHAPE(SFired, SField{"node", &SFired::handle, FIELD_NULLABLE}, SField{"output", &SFired::output, FIELD_NULLABLE},
      SFlat{&SFired::by})

SHAPE(SLogged, SField{"level", &SLogged::nLevel}, SField{"args", &SLogged::arguments},
      SField{"text", &SLogged::strText}, SField{"length", &SLogged::length, FIELD_OPTIONAL})

SHAPE(SNotified, SField{"node", &SNotified::handle, FIELD_NULLABLE}, SField{"wparam", &SNotified::nWParam},
      SField{"lparam", &SNotified::nLParam})

SHAPE(SSentRecord, SField{"device", &SSentRecord::nDevice}, SField{"command", &SSentRecord::nCommand},
      SField{"clip", &SSentRecord::clip, FIELD_NULLABLE}, SField{"record", &SSentRecord::record})

SHAPE(SSentBytes, SField{"device", &SSentBytes::nDevice}, SField{"raw", &SSentBytes::bytes},
      SField{"size", &SSentBytes::size, FIELD_OPTIONAL})

SHAPE(SRedrawn, SField{"node", &SRedrawn::handle, FIELD_NULLABLE})

SHAPE(SActivity, SField{"posted", &SActivity::fired, FIELD_OPTIONAL}, SField{"log", &SActivity::logged, FIELD_OPTIONAL},
      SField{"notified", &SActivity::notified, FIELD_OPTIONAL}, SField{"sent", &SActivity::sent, FIELD_OPTIONAL},
      SField{"redrawn", &SActivity::redrawn, FIELD_OPTIONAL})

// ---- Results ------------------------------------------------------------------------------------------------------

SHAPE(std::monostate)

SHAPE(SNodeType, SField{"guid", &SNodeType::guid}, SField{"kind", &SNodeType::nKind},
      SField{"name", &SNodeType::strName}, SField{"aux", &SNodeType::strAux}, SField{"tip", &SNodeType::strTip},
      SField{"icon", &SNodeType::bIcon}, SField{"enable", &SNodeType::nEnable},
      SField{"reserved", &SNodeType::reserved})

SHAPE(SCatalogue, SField{"types", &SCatalogue::types})

SHAPE(SCalled, SField{"result", &SCalled::nResult})

SHAPE(SCreated, SField{"result", &SCreated::nResult}, SField{"created", &SCreated::bCreated})

SHAPE(SLayout, SField{"path", &SLayout::strPath}, SField{"reader", &SLayout::pReader},
      SField{"state", &SLayout::pState}, SField{"array", &SLayout::pArray}, SField{"groups", &SLayout::nGroups})

SHAPE(SDestroyed, SField{"result", &SDestroyed::nResult}, SField{"slot_null", &SDestroyed::bSlotNull},
      SField{"freed", &SDestroyed::bFreed})

inline std::string MemberName(const SNode* pNode) {
    return pNode->strHandle;
}

SHAPE(SNodeResults, SField{"results", &SNodeResults::results})

SHAPE(SFrameResults, SField{"results", &SFrameResults::results},
      SField{"outputs", &SFrameResults::outputs, FIELD_OPTIONAL})

SHAPE(SEdited, SField{"needed", &SEdited::bNeeded}, SField{"result", &SEdited::result, FIELD_NULLABLE})

SHAPE(SReleased, SField{"released", &SReleased::releases})

SHAPE(SListening, SField{"broadcast", &SListening::broadcast, FIELD_NULLABLE},
      SField{"control", &SListening::control, FIELD_NULLABLE})

template <>
struct Names<EPeer> {
    static constexpr const char* ROWS[] = {"broadcast", "control", "device"};
};

SHAPE(SDispatched, SField{"from", &SDispatched::nFrom}, SField{"device", &SDispatched::nDevice},
      SField{"event", &SDispatched::nEvent}, SFlat{&SDispatched::results})

SHAPE(SWaited, SField{"dispatched", &SWaited::dispatched})

SHAPE(SObjects, SField{"objects", &SObjects::objects})

SHAPE(SHeldEntry, SField{"connection", &SHeldEntry::nConnection}, SField{"device", &SHeldEntry::nDevice},
      SField{"what", &SHeldEntry::strWhat}, SField{"identity", &SHeldEntry::identity},
      SField{"ms", &SHeldEntry::nAgeMs})

SHAPE(SOtherDevice, SField{"device", &SOtherDevice::nDevice}, SField{"expected", &SOtherDevice::nExpected})

SHAPE(SOtherObject, SField{"clip", &SOtherObject::strClip}, SField{"object", &SOtherObject::strObject},
      SField{"expected_clip", &SOtherObject::strExpectedClip},
      SField{"expected_object", &SOtherObject::strExpectedObject})

SHAPE(SKeyMissing, SField{"key", &SKeyMissing::strKey})

SHAPE(SValueDiffers, SField{"key", &SValueDiffers::strKey}, SField{"value", &SValueDiffers::strValue},
      SField{"expected", &SValueDiffers::strExpected})

SHAPE(STaken)
SHAPE(SNotJson)
SHAPE(SNotObject)
SHAPE(SNotReady)

using VerdictKind = decltype(SVerdict::what);
UNION(VerdictKind, "verdict", "there is no verdict ")

TAG(STaken, "taken")
TAG(SOtherDevice, "other_device")
TAG(SOtherObject, "other_object")
TAG(SNotJson, "not_json")
TAG(SNotObject, "not_object")
TAG(SKeyMissing, "key_missing")
TAG(SValueDiffers, "value_differs")
TAG(SNotReady, "not_ready")

SHAPE(SVerdict, SFlat{&SVerdict::what}, SField{"text", &SVerdict::strText}, SField{"length", &SVerdict::nLength})

SHAPE(SVerdicts, SField{"nodes", &SVerdicts::nodes})

// ---- Values of their own kind -------------------------------------------------------------------------------------

template <>
struct Codec<Payload> { ///< null for none
    static void Read(Payload& value, const Json& json, const std::string& strPath);
    static OrderedJson Write(const Payload& value);
};

/// A number or a text: the value of a parameter, or what tells held things apart.
template <>
struct Codec<ParamValue> {
    static void Read(ParamValue& value, const Json& json, const std::string& strPath);
    static OrderedJson Write(const ParamValue& value);
};

template <>
struct Codec<HeldIdentity> {
    static void Read(HeldIdentity& value, const Json& json, const std::string& strPath);
    static OrderedJson Write(const HeldIdentity& value);
};

/// A list of virtual-key codes.
template <>
struct Codec<KeySet> {
    static void Read(KeySet& value, const Json& json, const std::string& strPath);
    static OrderedJson Write(const KeySet& value);
};

/// {"device","event","payload"} or {"virtual_key"}
template <>
struct Codec<SRelease> {
    static OrderedJson Write(const SRelease& value);
};

template <>
struct Codec<Sent> {
    static OrderedJson Write(const Sent& value);
};

template <>
struct Codec<std::vector<unsigned char>> { ///< in hexadecimal
    static OrderedJson Write(const std::vector<unsigned char>& value);
};

template <>
struct Codec<const void*> { ///< an address as text
    static OrderedJson Write(const void* value);
};

template <>
struct Codec<SNetworkState> {
    static OrderedJson Write(const SNetworkState& value) { return NetworkToJson(value); }
};
void AppendFields(OrderedJson& json, const SNetworkState& state);
