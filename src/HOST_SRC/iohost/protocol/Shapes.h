// The JSON of everything that a session takes and tells: docs/session-protocol.md in tables.
#pragma once

#include "protocol/Shape.h"

#include "base/TextTables.h"
#include "protocol/NetworkJson.h"
#include "session/Outcome.h"

// ---- Parameters, nodes, scenes ------------------------------------------------------------------------------------

template <>
struct Shape<SParamState> {
    static constexpr const char* NAME = "Param";
    static constexpr auto FIELDS = std::tuple(
        SField{"id", &SParamState::nId}, SField{"name", &SParamState::name, FIELD_OPTIONAL},
        SField{"display", &SParamState::display, FIELD_OPTIONAL}, SField{"type", &SParamState::type, FIELD_OPTIONAL},
        SField{"control", &SParamState::control, FIELD_OPTIONAL},
        SField{"range", &SParamState::range, FIELD_OPTIONAL | FIELD_NULLABLE},
        SField{"flags", &SParamState::flags, FIELD_OPTIONAL | FIELD_NULLABLE},
        SField{"int", &SParamState::integer, FIELD_OPTIONAL}, SField{"float", &SParamState::number, FIELD_OPTIONAL},
        SField{"string", &SParamState::text, FIELD_OPTIONAL}, SField{"length", &SParamState::length, FIELD_OPTIONAL},
        SField{"choices", &SParamState::choices, FIELD_OPTIONAL},
        SField{"available", &SParamState::available, FIELD_OPTIONAL},
        SField{"extra", &SParamState::extra, FIELD_OPTIONAL});
};

template <>
struct Shape<SGroupState> {
    static constexpr const char* NAME = "ParamGroup";
    static constexpr auto FIELDS =
        std::tuple(SField{"id", &SGroupState::nId}, SField{"name", &SGroupState::name, FIELD_OPTIONAL},
                   SField{"display", &SGroupState::display, FIELD_OPTIONAL}, SField{"params", &SGroupState::params});
};

template <>
struct Shape<SValues> {
    static constexpr const char* NAME = "OutputValue";
    static constexpr auto FIELDS =
        std::tuple(SField{"int", &SValues::nInteger}, SField{"float", &SValues::fNumber},
                   SField{"string", &SValues::strText}, SField{"length", &SValues::length, FIELD_OPTIONAL});
};

template <>
struct Shape<SNodeDetails> {
    static constexpr const char* NAME = "NodeDetails";
    static constexpr auto FIELDS =
        std::tuple(SField{"type", &SNodeDetails::guidType}, SField{"kind_code", &SNodeDetails::nKindCode},
                   SField{"name", &SNodeDetails::strName}, SField{"second_name", &SNodeDetails::strSecondName},
                   SField{"own", &SNodeDetails::own}, SField{"inputs", &SNodeDetails::inputs},
                   SField{"outputs", &SNodeDetails::outputs});
};

template <>
struct Shape<SSceneNode> {
    static constexpr const char* NAME = "SceneNode";
    static constexpr auto FIELDS =
        std::tuple(SField{"node", &SSceneNode::strHandle}, SField{"type", &SSceneNode::guidType},
                   SField{"clip", &SSceneNode::clip, FIELD_NULLABLE}, SField{"graph", &SSceneNode::strGraph},
                   SField{"name", &SSceneNode::strName});
};

template <>
struct Shape<SLinkDocument> {
    static constexpr const char* NAME = "Link";
    static constexpr auto FIELDS =
        std::tuple(SField{"from", &SLinkDocument::strFrom}, SField{"output", &SLinkDocument::nOutput},
                   SField{"to", &SLinkDocument::strTo}, SField{"input", &SLinkDocument::nInput});
};

template <>
struct Shape<SSceneView> {
    static constexpr const char* NAME = "Scene";
    static constexpr auto FIELDS = std::tuple(SField{"version", &SSceneView::nVersion},
                                              SField{"nodes", &SSceneView::nodes}, SField{"links", &SSceneView::links});
};

template <>
struct Shape<SObjectState> {
    static constexpr const char* NAME = "SceneObject";
    static constexpr auto FIELDS =
        std::tuple(SField{"clip", &SObjectState::strClip}, SField{"name", &SObjectState::strName},
                   SField{"matrix", &SObjectState::matrix});
};

template <>
struct Shape<SObjectDocument> {
    static constexpr const char* NAME = "ObjectDocument";
    static constexpr auto FIELDS = std::tuple(SField{"name", &SObjectDocument::strName},
                                              SField{"matrix", &SObjectDocument::matrix, FIELD_OPTIONAL});
};

template <>
struct Shape<SClipDocument> {
    static constexpr const char* NAME = "ClipDocument";
    static constexpr auto FIELDS =
        std::tuple(SField{"name", &SClipDocument::strName}, SField{"objects", &SClipDocument::objects});
};

template <>
struct Shape<SNodeDocument> {
    static constexpr const char* NAME = "NodeDocument";
    static constexpr auto FIELDS = std::tuple(
        SField{"node", &SNodeDocument::strHandle}, SField{"type", &SNodeDocument::guidType},
        SField{"clip", &SNodeDocument::clip, FIELD_NULLABLE}, SField{"graph", &SNodeDocument::strGraph},
        SField{"event_window", &SNodeDocument::bEventWindow, FIELD_DEFAULTED},
        SField{"notify_window", &SNodeDocument::bNotifyWindow, FIELD_DEFAULTED},
        SField{"own", &SNodeDocument::own, FIELD_OPTIONAL}, SField{"inputs", &SNodeDocument::inputs, FIELD_OPTIONAL},
        SField{"outputs", &SNodeDocument::outputs, FIELD_OPTIONAL});
};

/// [{"id","name","parser","address"}]
template <>
struct Codec<std::vector<SDeviceSetup>> {
    static void Read(std::vector<SDeviceSetup>& value, const Json& json, const std::string& strPath) {
        value = *ReadDevices(json, strPath);
    }
    static OrderedJson Write(const std::vector<SDeviceSetup>& value) { return DevicesToJson(value); }
    static std::string Type(CTypeScript& /*types*/) { return "DeviceSetup[]"; }
};

/// Without "format" and "version", which are a file's.
template <>
struct Shape<SSceneDocument> {
    static constexpr const char* NAME = "SceneDocument";
    static constexpr auto FIELDS =
        std::tuple(SField{"clips", &SSceneDocument::clips, FIELD_DEFAULTED},
                   SField{"nodes", &SSceneDocument::nodes, FIELD_DEFAULTED},
                   SField{"links", &SSceneDocument::links, FIELD_DEFAULTED},
                   SField{"devices", &SSceneDocument::devices, FIELD_OPTIONAL | FIELD_NULLABLE});
};

// ---- Payloads -----------------------------------------------------------------------------------------------------

template <>
struct Shape<SKeyEventData> {
    static constexpr const char* NAME = "KeyPayload";
    static constexpr auto FIELDS = std::tuple(SField{"text", &SKeyEventData::m_strText});
};

template <>
struct Shape<CPoint> {
    static constexpr const char* NAME = "Pixel";
    static constexpr auto FIELDS = std::tuple(SField{"x", &CPoint::x}, SField{"y", &CPoint::y});
};

template <>
struct Shape<SQORMouseData> {
    static constexpr const char* NAME = "PointerPayload";
    static constexpr auto FIELDS =
        std::tuple(SField{"rx", &SQORMouseData::m_fRelativeX}, SField{"ry", &SQORMouseData::m_fRelativeY},
                   SFlat{&SQORMouseData::m_ptPixel}, SField{"pointer", &SQORMouseData::m_nPointer},
                   SField{"relative", &SQORMouseData::m_bRelative});
};

template <>
struct Shape<SVRPluginData> {
    static constexpr const char* NAME = "VRPayload";
    static constexpr auto FIELDS =
        std::tuple(SField{"hand", &SVRPluginData::m_nHand}, SField{"trigger", &SVRPluginData::m_bTriggerPressed},
                   SField{"pad", &SVRPluginData::m_bTouchPadPressed}, SField{"padx", &SVRPluginData::m_fTouchPadX},
                   SField{"pady", &SVRPluginData::m_fTouchPadY}, SField{"pose", &SVRPluginData::m_fPose},
                   SField{"hit", &SVRPluginData::m_fHitPosition}, SField{"press", &SVRPluginData::m_nPressTime},
                   SField{"release", &SVRPluginData::m_nReleaseTime});
};

template <>
struct Shape<SBroadcastItem> {
    static constexpr const char* NAME = "BroadcastPayload";
    static constexpr auto FIELDS =
        std::tuple(SField{"flag", &SBroadcastItem::m_strFlag}, SField{"clip", &SBroadcastItem::m_strClipName},
                   SField{"name", &SBroadcastItem::m_strName}, SField{"data", &SBroadcastItem::m_strData});
};

template <>
struct Shape<CQORPanelRemoteCtrlData> {
    static constexpr const char* NAME = "RecordPayload";
    static constexpr auto FIELDS = std::tuple(SField{"DevID", &CQORPanelRemoteCtrlData::m_strDevID},
                                              SField{"DevName", &CQORPanelRemoteCtrlData::m_strDevName},
                                              SField{"ClipName", &CQORPanelRemoteCtrlData::m_strClipName},
                                              SField{"GroupName", &CQORPanelRemoteCtrlData::m_strGroupName},
                                              SField{"KeyName", &CQORPanelRemoteCtrlData::m_strKeyName},
                                              SField{"KeyNumber", &CQORPanelRemoteCtrlData::m_nKeyNumber},
                                              SField{"HelpParameter", &CQORPanelRemoteCtrlData::m_strHelpParameter},
                                              SField{"KeyValue", &CQORPanelRemoteCtrlData::m_strKeyValue},
                                              SField{"Layer", &CQORPanelRemoteCtrlData::m_nLayer});
};

template <>
struct Shape<SDeviceTextData> {
    static constexpr const char* NAME = "DeviceTextPayload";
    static constexpr auto FIELDS =
        std::tuple(SField{"device", &SDeviceTextData::m_nDeviceId}, SField{"text", &SDeviceTextData::m_strText});
};

template <>
struct Shape<SObjectTextData> {
    static constexpr const char* NAME = "ObjectTextPayload";
    static constexpr auto FIELDS =
        std::tuple(SField{"clip", &SObjectTextData::m_strClipName}, SField{"object", &SObjectTextData::m_strObjectName},
                   SField{"text", &SObjectTextData::m_strText});
};

void ReadFields(SQORMouseData& sample, const CFields& fields);

template <>
inline void Emplace<SQORMouseData>(Payload& payload) {
    payload.emplace<SQORMouseData>(0, 0.0f, 0.0f, CPoint(0, 0), 0);
}

template <>
struct Union<Payload> {
    static constexpr const char* TAG = "is";
    static constexpr const char* UNKNOWN = "there is no payload kind ";
};

template <>
inline constexpr const char* TAG_NAME<SKeyEventData> = "key";
template <>
inline constexpr const char* TAG_NAME<SQORMouseData> = "pointer";
template <>
inline constexpr const char* TAG_NAME<SVRPluginData> = "vr";
template <>
inline constexpr const char* TAG_NAME<SBroadcastItem> = "broadcast";
template <>
inline constexpr const char* TAG_NAME<CQORPanelRemoteCtrlData> = "record";
template <>
inline constexpr const char* TAG_NAME<SDeviceTextData> = "device_text";
template <>
inline constexpr const char* TAG_NAME<SObjectTextData> = "object_text";

// ---- Commands -----------------------------------------------------------------------------------------------------

template <>
struct Names<EPlace> {
    static constexpr const char* ROWS[] = {"own", "inputs", "outputs"};
};

template <>
struct Names<ETextTable> {
    static constexpr const char* ROWS[] = {"keys", "en", "zh"};
};

template <>
struct Shape<SSavedPins> {
    static constexpr const char* NAME = "SavedPins";
    static constexpr auto FIELDS = std::tuple(SField{"group", &SSavedPins::nGroup}, SField{"ids", &SSavedPins::ids});
};

template <>
struct Shape<SSavedSet> {
    static constexpr const char* NAME = "SavedSet";
    static constexpr auto FIELDS = std::tuple(
        SField{"values", &SSavedSet::values, FIELD_OPTIONAL}, SField{"drop", &SSavedSet::drop, FIELD_OPTIONAL},
        SField{"available", &SSavedSet::available, FIELD_OPTIONAL},
        SField{"choices", &SSavedSet::emptyChoices, FIELD_OPTIONAL},
        SField{"groups", &SSavedSet::bGroups, FIELD_OPTIONAL}, SField{"pins", &SSavedSet::pins, FIELD_OPTIONAL});
};

template <>
struct Shape<SCatalogueCommand> {
    static constexpr const char* NAME = "CatalogueCommand";
    static constexpr auto FIELDS = std::tuple();
};

template <>
struct Shape<SCallCommand> {
    static constexpr const char* NAME = "CallCommand";
    static constexpr auto FIELDS = std::tuple(SField{"code", &SCallCommand::nCode});
};

template <>
struct Shape<SCreateCommand> {
    static constexpr const char* NAME = "CreateCommand";
    static constexpr auto FIELDS =
        std::tuple(SField{"node", &SCreateCommand::strHandle}, SField{"type", &SCreateCommand::guidType},
                   SField{"clip", &SCreateCommand::clip, FIELD_NULLABLE}, SField{"graph", &SCreateCommand::strGraph},
                   SField{"event_window", &SCreateCommand::bEventWindow, FIELD_OPTIONAL},
                   SField{"notify_window", &SCreateCommand::bNotifyWindow, FIELD_OPTIONAL},
                   SField{"outputs", &SCreateCommand::bOutputs, FIELD_OPTIONAL},
                   SField{"saved", &SCreateCommand::saved, FIELD_OPTIONAL});
};

template <>
struct Shape<SInspectCommand> {
    static constexpr const char* NAME = "InspectCommand";
    static constexpr auto FIELDS = std::tuple(SField{"node", &SInspectCommand::strHandle});
};

template <>
struct Shape<SInitCommand> {
    static constexpr const char* NAME = "InitCommand";
    static constexpr auto FIELDS = std::tuple(SField{"node", &SInitCommand::strHandle});
};

template <>
struct Shape<SOutputsCommand> {
    static constexpr const char* NAME = "OutputsCommand";
    static constexpr auto FIELDS = std::tuple(SField{"node", &SOutputsCommand::strHandle});
};

template <>
struct Shape<SLayoutCommand> {
    static constexpr const char* NAME = "LayoutCommand";
    static constexpr auto FIELDS = std::tuple(SField{"node", &SLayoutCommand::strHandle});
};

template <>
struct Shape<SDestroyCommand> {
    static constexpr const char* NAME = "DestroyCommand";
    static constexpr auto FIELDS =
        std::tuple(SField{"node", &SDestroyCommand::strHandle}, SField{"type", &SDestroyCommand::type, FIELD_OPTIONAL},
                   SField{"pointer", &SDestroyCommand::bPointer, FIELD_OPTIONAL});
};

template <>
struct Shape<SProcessCommand> {
    static constexpr const char* NAME = "ProcessCommand";
    static constexpr auto FIELDS = std::tuple(SField{"node", &SProcessCommand::handle, FIELD_OPTIONAL},
                                              SField{"graph", &SProcessCommand::bGraph, FIELD_OPTIONAL});
};

template <>
struct Shape<SJsonCommand> {
    static constexpr const char* NAME = "JsonCommand";
    static constexpr auto FIELDS = std::tuple();
};

template <>
struct Shape<SHeldFilter> {
    static constexpr const char* NAME = "HeldFilter";
    static constexpr auto FIELDS = std::tuple(SField{"device", &SHeldFilter::device, FIELD_OPTIONAL},
                                              SField{"identity", &SHeldFilter::identity, FIELD_OPTIONAL});
};

template <>
struct Shape<SReleaseHeldCommand> {
    static constexpr const char* NAME = "ReleaseHeldCommand";
    static constexpr auto FIELDS = std::tuple(SField{"reason", &SReleaseHeldCommand::strReason, FIELD_OPTIONAL},
                                              SFlat{&SReleaseHeldCommand::filter},
                                              SField{"everyone", &SReleaseHeldCommand::bEveryone, FIELD_OPTIONAL});
};

template <>
struct Shape<STriggerCommand> {
    static constexpr const char* NAME = "TriggerCommand";
    static constexpr auto FIELDS =
        std::tuple(SField{"node", &STriggerCommand::strHandle}, SField{"param", &STriggerCommand::nParam});
};

template <>
struct Shape<SDropCommand> {
    static constexpr const char* NAME = "DropCommand";
    static constexpr auto FIELDS =
        std::tuple(SField{"node", &SDropCommand::strHandle}, SField{"param", &SDropCommand::nParam},
                   SField{"from", &SDropCommand::from});
};

template <>
struct Shape<SLinkCommand> {
    static constexpr const char* NAME = "LinkCommand";
    static constexpr auto FIELDS =
        std::tuple(SField{"from", &SLinkCommand::strFrom}, SField{"output", &SLinkCommand::nOutput},
                   SField{"to", &SLinkCommand::strTo}, SField{"input", &SLinkCommand::nInput});
};

template <>
struct Shape<SKeysCommand> {
    static constexpr const char* NAME = "KeysCommand";
    static constexpr auto FIELDS = std::tuple(SField{"down", &SKeysCommand::down, FIELD_OPTIONAL},
                                              SField{"toggled", &SKeysCommand::toggled, FIELD_OPTIONAL});
};

template <>
struct Shape<SClockCommand> {
    static constexpr const char* NAME = "ClockCommand";
    static constexpr auto FIELDS = std::tuple(SField{"ms", &SClockCommand::ms, FIELD_NULLABLE});
};

template <>
struct Shape<SMainWindowCommand> {
    static constexpr const char* NAME = "MainWindowCommand";
    static constexpr auto FIELDS =
        std::tuple(SField{"present", &SMainWindowCommand::bPresent}, SField{"enabled", &SMainWindowCommand::bEnabled});
};

template <>
struct Shape<SObjectCommand> {
    static constexpr const char* NAME = "ObjectCommand";
    static constexpr auto FIELDS =
        std::tuple(SField{"clip", &SObjectCommand::strClip}, SField{"name", &SObjectCommand::strName});
};

template <>
struct Shape<SObjectsCommand> {
    static constexpr const char* NAME = "ObjectsCommand";
    static constexpr auto FIELDS = std::tuple();
};

template <>
struct Shape<SDevicesCommand> {
    static constexpr const char* NAME = "DevicesCommand";
    static constexpr auto FIELDS = std::tuple(SField{"list", &SDevicesCommand::devices, FIELD_NULLABLE});
};

template <>
struct Shape<SListenCommand> {
    static constexpr const char* NAME = "ListenCommand";
    static constexpr auto FIELDS =
        std::tuple(SField{"broadcast", &SListenCommand::broadcast, FIELD_OPTIONAL},
                   SField{"control", &SListenCommand::control, FIELD_OPTIONAL | FIELD_NULLABLE},
                   SField{"address", &SListenCommand::address, FIELD_OPTIONAL});
};

template <>
struct Shape<SWaitCommand> {
    static constexpr const char* NAME = "WaitCommand";
    static constexpr auto FIELDS = std::tuple(SField{"ms", &SWaitCommand::nMilliseconds});
};

template <>
struct Shape<SNetworkCommand> {
    static constexpr const char* NAME = "NetworkCommand";
    static constexpr auto FIELDS = std::tuple();
};

template <>
struct Shape<SListenOnlyCommand> {
    static constexpr const char* NAME = "ListenOnlyCommand";
    static constexpr auto FIELDS = std::tuple(SField{"on", &SListenOnlyCommand::bOn});
};

template <>
struct Shape<SSaveCommand> {
    static constexpr const char* NAME = "SaveCommand";
    static constexpr auto FIELDS = std::tuple();
};

template <>
struct Shape<SSceneCommand> {
    static constexpr const char* NAME = "SceneCommand";
    static constexpr auto FIELDS = std::tuple();
};

template <>
struct Shape<SRecordingCommand> {
    static constexpr const char* NAME = "RecordingCommand";
    static constexpr auto FIELDS =
        std::tuple(SField{"version", &SRecordingCommand::nVersion}, SField{"texts", &SRecordingCommand::nTexts});
};

template <>
struct Shape<SQuitCommand> {
    static constexpr const char* NAME = "QuitCommand";
    static constexpr auto FIELDS = std::tuple();
};

template <>
struct Union<Command> {
    static constexpr const char* TAG = "op";
    static constexpr const char* UNKNOWN = "unknown op ";
};

template <>
inline constexpr const char* TAG_NAME<SCatalogueCommand> = "catalogue";
template <>
inline constexpr const char* TAG_NAME<SCallCommand> = "call";
template <>
inline constexpr const char* TAG_NAME<SCreateCommand> = "create";
template <>
inline constexpr const char* TAG_NAME<SInspectCommand> = "inspect";
template <>
inline constexpr const char* TAG_NAME<SInitCommand> = "init";
template <>
inline constexpr const char* TAG_NAME<SOutputsCommand> = "outputs";
template <>
inline constexpr const char* TAG_NAME<SLayoutCommand> = "layout";
template <>
inline constexpr const char* TAG_NAME<SDestroyCommand> = "destroy";
template <>
inline constexpr const char* TAG_NAME<SProcessCommand> = "process";
template <>
inline constexpr const char* TAG_NAME<SFrameCommand> = "process";
template <>
inline constexpr const char* TAG_NAME<SEventCommand> = "event";
template <>
inline constexpr const char* TAG_NAME<SJsonCommand> = "json";
template <>
inline constexpr const char* TAG_NAME<SReleaseHeldCommand> = "release_held";
template <>
inline constexpr const char* TAG_NAME<SSetCommand> = "set";
template <>
inline constexpr const char* TAG_NAME<SEditCommand> = "edit";
template <>
inline constexpr const char* TAG_NAME<STriggerCommand> = "trigger";
template <>
inline constexpr const char* TAG_NAME<SDropCommand> = "drop";
template <>
inline constexpr const char* TAG_NAME<SLinkCommand> = "link";
template <>
inline constexpr const char* TAG_NAME<SKeysCommand> = "keys";
template <>
inline constexpr const char* TAG_NAME<SClockCommand> = "clock";
template <>
inline constexpr const char* TAG_NAME<SMainWindowCommand> = "main_window";
template <>
inline constexpr const char* TAG_NAME<SObjectCommand> = "object";
template <>
inline constexpr const char* TAG_NAME<SObjectsCommand> = "objects";
template <>
inline constexpr const char* TAG_NAME<SDevicesCommand> = "devices";
template <>
inline constexpr const char* TAG_NAME<SListenCommand> = "listen";
template <>
inline constexpr const char* TAG_NAME<SWaitCommand> = "wait";
template <>
inline constexpr const char* TAG_NAME<SNetworkCommand> = "network";
template <>
inline constexpr const char* TAG_NAME<SListenOnlyCommand> = "listen_only";
template <>
inline constexpr const char* TAG_NAME<SSaveCommand> = "save";
template <>
inline constexpr const char* TAG_NAME<SLoadCommand> = "load";
template <>
inline constexpr const char* TAG_NAME<SSceneCommand> = "scene";
template <>
inline constexpr const char* TAG_NAME<SRecordingCommand> = "recording";
template <>
inline constexpr const char* TAG_NAME<SQuitCommand> = "quit";

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

template <>
struct Shape<SEventParam> {
    static constexpr const char* NAME = "EventParam";
    static constexpr auto FIELDS =
        std::tuple(SField{"id", &SEventParam::nId}, SField{"name", &SEventParam::strName},
                   SField{"display", &SEventParam::strDisplay}, SField{"type", &SEventParam::nType},
                   SField{"control", &SEventParam::nControl}, SField{"type_name", &SEventParam::strTypeName},
                   SField{"points", &SEventParam::points, FIELD_NULLABLE});
};

template <>
struct Shape<SFiredByWindow> {
    static constexpr const char* NAME = "FiredByWindow";
    static constexpr auto FIELDS =
        std::tuple(SField{"name", &SFiredByWindow::strName}, SField{"event_id", &SFiredByWindow::nEventId},
                   SField{"wparam", &SFiredByWindow::nWParam}, SField{"params", &SFiredByWindow::params});
};

template <>
struct Shape<SFiredByHost> {
    static constexpr const char* NAME = "FiredByHost";
    static constexpr auto FIELDS = std::tuple(SField{"clip", &SFiredByHost::clip, FIELD_NULLABLE},
                                              SField{"object", &SFiredByHost::object, FIELD_NULLABLE});
};

using FiredBy = decltype(SFired::by);
template <>
struct Union<FiredBy> {
    static constexpr const char* TAG = "via";
    static constexpr const char* UNKNOWN = "there is no way ";
};

template <>
inline constexpr const char* TAG_NAME<SFiredByWindow> = "window";
template <>
inline constexpr const char* TAG_NAME<SFiredByHost> = "host";

template <>
struct Shape<SFired> {
    static constexpr const char* NAME = "PostedEvent";
    static constexpr auto FIELDS = std::tuple(SField{"node", &SFired::handle, FIELD_NULLABLE},
                                              SField{"output", &SFired::output, FIELD_NULLABLE}, SFlat{&SFired::by});
};

template <>
struct Shape<SLogged> {
    static constexpr const char* NAME = "LogEntry";
    static constexpr auto FIELDS =
        std::tuple(SField{"level", &SLogged::nLevel}, SField{"args", &SLogged::arguments},
                   SField{"text", &SLogged::strText}, SField{"length", &SLogged::length, FIELD_OPTIONAL});
};

template <>
struct Shape<SNotified> {
    static constexpr const char* NAME = "Notified";
    static constexpr auto FIELDS =
        std::tuple(SField{"node", &SNotified::handle, FIELD_NULLABLE}, SField{"wparam", &SNotified::nWParam},
                   SField{"lparam", &SNotified::nLParam});
};

template <>
struct Shape<SSentRecord> {
    static constexpr const char* NAME = "SentRecord";
    static constexpr auto FIELDS =
        std::tuple(SField{"device", &SSentRecord::nDevice}, SField{"command", &SSentRecord::nCommand},
                   SField{"clip", &SSentRecord::clip, FIELD_NULLABLE}, SField{"record", &SSentRecord::record});
};

template <>
struct Shape<SSentBytes> {
    static constexpr const char* NAME = "SentBytes";
    static constexpr auto FIELDS = std::tuple(SField{"device", &SSentBytes::nDevice}, SField{"raw", &SSentBytes::bytes},
                                              SField{"size", &SSentBytes::size, FIELD_OPTIONAL});
};

template <>
struct Shape<SRedrawn> {
    static constexpr const char* NAME = "Redrawn";
    static constexpr auto FIELDS = std::tuple(SField{"node", &SRedrawn::handle, FIELD_NULLABLE});
};

template <>
struct Shape<SActivity> {
    static constexpr const char* NAME = "Happened";
    static constexpr auto FIELDS = std::tuple(
        SField{"posted", &SActivity::fired, FIELD_OPTIONAL}, SField{"log", &SActivity::logged, FIELD_OPTIONAL},
        SField{"notified", &SActivity::notified, FIELD_OPTIONAL}, SField{"sent", &SActivity::sent, FIELD_OPTIONAL},
        SField{"redrawn", &SActivity::redrawn, FIELD_OPTIONAL});
};

// ---- Results ------------------------------------------------------------------------------------------------------

template <>
struct Shape<std::monostate> {
    static constexpr const char* NAME = "Nothing";
    static constexpr auto FIELDS = std::tuple();
};

template <>
struct Shape<SNodeType> {
    static constexpr const char* NAME = "NodeType";
    static constexpr auto FIELDS = std::tuple(
        SField{"guid", &SNodeType::guid}, SField{"kind", &SNodeType::nKind}, SField{"name", &SNodeType::strName},
        SField{"aux", &SNodeType::strAux}, SField{"tip", &SNodeType::strTip}, SField{"icon", &SNodeType::bIcon},
        SField{"enable", &SNodeType::nEnable}, SField{"reserved", &SNodeType::reserved});
};

template <>
struct Shape<SCatalogue> {
    static constexpr const char* NAME = "Catalogue";
    static constexpr auto FIELDS = std::tuple(SField{"types", &SCatalogue::types});
};

template <>
struct Shape<SCalled> {
    static constexpr const char* NAME = "Called";
    static constexpr auto FIELDS = std::tuple(SField{"result", &SCalled::nResult});
};

template <>
struct Shape<SCreated> {
    static constexpr const char* NAME = "Created";
    static constexpr auto FIELDS =
        std::tuple(SField{"result", &SCreated::nResult}, SField{"created", &SCreated::bCreated});
};

template <>
struct Shape<SLayout> {
    static constexpr const char* NAME = "Layout";
    static constexpr auto FIELDS = std::tuple(SField{"path", &SLayout::strPath}, SField{"reader", &SLayout::pReader},
                                              SField{"state", &SLayout::pState}, SField{"array", &SLayout::pArray},
                                              SField{"groups", &SLayout::nGroups});
};

template <>
struct Shape<SDestroyed> {
    static constexpr const char* NAME = "Destroyed";
    static constexpr auto FIELDS =
        std::tuple(SField{"result", &SDestroyed::nResult}, SField{"slot_null", &SDestroyed::bSlotNull},
                   SField{"freed", &SDestroyed::bFreed});
};

template <>
struct Shape<SNodeResults> {
    static constexpr const char* NAME = "NodeResults";
    static constexpr auto FIELDS = std::tuple(SField{"results", &SNodeResults::results});
};

template <>
struct Shape<SFrameResults> {
    static constexpr const char* NAME = "FrameResults";
    static constexpr auto FIELDS = std::tuple(SField{"results", &SFrameResults::results},
                                              SField{"outputs", &SFrameResults::outputs, FIELD_OPTIONAL});
};

template <>
struct Shape<SEdited> {
    static constexpr const char* NAME = "Edited";
    static constexpr auto FIELDS =
        std::tuple(SField{"needed", &SEdited::bNeeded}, SField{"result", &SEdited::result, FIELD_NULLABLE});
};

template <>
struct Shape<SReleased> {
    static constexpr const char* NAME = "Released";
    static constexpr auto FIELDS = std::tuple(SField{"released", &SReleased::releases});
};

template <>
struct Shape<SListening> {
    static constexpr const char* NAME = "Listening";
    static constexpr auto FIELDS = std::tuple(SField{"broadcast", &SListening::broadcast, FIELD_NULLABLE},
                                              SField{"control", &SListening::control, FIELD_NULLABLE});
};

template <>
struct Names<EPeer> {
    static constexpr const char* ROWS[] = {"broadcast", "control", "device"};
};

template <>
struct Shape<SDispatched> {
    static constexpr const char* NAME = "Dispatched";
    static constexpr auto FIELDS =
        std::tuple(SField{"from", &SDispatched::nFrom}, SField{"device", &SDispatched::nDevice},
                   SField{"event", &SDispatched::nEvent}, SFlat{&SDispatched::results});
};

template <>
struct Shape<SWaited> {
    static constexpr const char* NAME = "Waited";
    static constexpr auto FIELDS = std::tuple(SField{"dispatched", &SWaited::dispatched});
};

template <>
struct Shape<SObjects> {
    static constexpr const char* NAME = "Objects";
    static constexpr auto FIELDS = std::tuple(SField{"objects", &SObjects::objects});
};

template <>
struct Shape<SHeldEntry> {
    static constexpr const char* NAME = "HeldEntry";
    static constexpr auto FIELDS =
        std::tuple(SField{"connection", &SHeldEntry::nConnection}, SField{"device", &SHeldEntry::nDevice},
                   SField{"what", &SHeldEntry::strWhat}, SField{"identity", &SHeldEntry::identity},
                   SField{"ms", &SHeldEntry::nAgeMs});
};

template <>
struct Shape<SOtherDevice> {
    static constexpr const char* NAME = "OtherDevice";
    static constexpr auto FIELDS =
        std::tuple(SField{"device", &SOtherDevice::nDevice}, SField{"expected", &SOtherDevice::nExpected});
};

template <>
struct Shape<SOtherObject> {
    static constexpr const char* NAME = "OtherObject";
    static constexpr auto FIELDS =
        std::tuple(SField{"clip", &SOtherObject::strClip}, SField{"object", &SOtherObject::strObject},
                   SField{"expected_clip", &SOtherObject::strExpectedClip},
                   SField{"expected_object", &SOtherObject::strExpectedObject});
};

template <>
struct Shape<SKeyMissing> {
    static constexpr const char* NAME = "KeyMissing";
    static constexpr auto FIELDS = std::tuple(SField{"key", &SKeyMissing::strKey});
};

template <>
struct Shape<SValueDiffers> {
    static constexpr const char* NAME = "ValueDiffers";
    static constexpr auto FIELDS =
        std::tuple(SField{"key", &SValueDiffers::strKey}, SField{"value", &SValueDiffers::strValue},
                   SField{"expected", &SValueDiffers::strExpected});
};

template <>
struct Shape<STaken> : Shape<std::monostate> {};
template <>
struct Shape<SNotJson> : Shape<std::monostate> {};
template <>
struct Shape<SNotObject> : Shape<std::monostate> {};
template <>
struct Shape<SNotReady> : Shape<std::monostate> {};

using VerdictKind = decltype(SVerdict::what);
template <>
struct Union<VerdictKind> {
    static constexpr const char* TAG = "verdict";
    static constexpr const char* UNKNOWN = "there is no verdict ";
};

template <>
inline constexpr const char* TAG_NAME<STaken> = "taken";
template <>
inline constexpr const char* TAG_NAME<SOtherDevice> = "other_device";
template <>
inline constexpr const char* TAG_NAME<SOtherObject> = "other_object";
template <>
inline constexpr const char* TAG_NAME<SNotJson> = "not_json";
template <>
inline constexpr const char* TAG_NAME<SNotObject> = "not_object";
template <>
inline constexpr const char* TAG_NAME<SKeyMissing> = "key_missing";
template <>
inline constexpr const char* TAG_NAME<SValueDiffers> = "value_differs";
template <>
inline constexpr const char* TAG_NAME<SNotReady> = "not_ready";

template <>
struct Shape<SVerdict> {
    static constexpr const char* NAME = "JsonVerdict";
    static constexpr auto FIELDS =
        std::tuple(SFlat{&SVerdict::what}, SField{"text", &SVerdict::strText}, SField{"length", &SVerdict::nLength});
};

template <>
struct Shape<SVerdicts> {
    static constexpr const char* NAME = "Verdicts";
    static constexpr auto FIELDS = std::tuple(SField{"nodes", &SVerdicts::nodes});
};

// ---- Values of their own kind -------------------------------------------------------------------------------------

template <>
struct Codec<Payload> { ///< null for none
    static void Read(Payload& value, const Json& json, const std::string& strPath);
    static OrderedJson Write(const Payload& value);
    static std::string Type(CTypeScript& types);
};

/// A number or a text: the value of a parameter, or what tells held things apart.
template <>
struct Codec<ParamValue> {
    static void Read(ParamValue& value, const Json& json, const std::string& strPath);
    static OrderedJson Write(const ParamValue& value);
    static std::string Type(CTypeScript& /*types*/) { return "number | string"; }
};

template <>
struct Codec<HeldIdentity> {
    static void Read(HeldIdentity& value, const Json& json, const std::string& strPath);
    static OrderedJson Write(const HeldIdentity& value);
    static std::string Type(CTypeScript& /*types*/) { return "number | string"; }
};

/// A list of virtual-key codes.
template <>
struct Codec<KeySet> {
    static void Read(KeySet& value, const Json& json, const std::string& strPath);
    static OrderedJson Write(const KeySet& value);
    static std::string Type(CTypeScript& /*types*/) { return "number[]"; }
};

/// {"device","event","payload"} or {"virtual_key"}
template <>
struct Codec<SRelease> {
    static OrderedJson Write(const SRelease& value);
    static std::string Type(CTypeScript& types);
};

template <>
struct Codec<Sent> {
    static OrderedJson Write(const Sent& value);
    static std::string Type(CTypeScript& types);
};

template <>
struct Codec<std::vector<unsigned char>> { ///< in hexadecimal
    static OrderedJson Write(const std::vector<unsigned char>& value);
    static std::string Type(CTypeScript& /*types*/) { return "string"; }
};

template <>
struct Codec<const void*> { ///< an address as text
    static OrderedJson Write(const void* value);
    static std::string Type(CTypeScript& /*types*/) { return "string | null"; }
};

template <>
struct Codec<SNetworkState> {
    static OrderedJson Write(const SNetworkState& value) { return NetworkToJson(value); }
    static std::string Type(CTypeScript& /*types*/) { return "NetworkState"; }
};
void AppendFields(OrderedJson& json, const SNetworkState& state);
