#include "MeasuredTypes.h"

#include "host/EventRecord.h"
#include "host/NodeTypeGuid.h"
#include "host/RemoteControlRecord.h"

namespace {

constexpr unsigned ENABLE = 2;

// ---- Keyboard -------------------------------------------------------------------------------------------------------

constexpr LookUp KEYBOARD_LOOK_UPS[] = {{Place::Input, ENABLE}, {Place::Output, 154}};

SKeyEventData s_key{nullptr, L"a"};

const SIOEventRecord KEY_DOWN[] = {{DEVICE_KEYBOARD, EVENT_KEY_DOWN, &s_key}};
constexpr Fired KEY_DOWN_FIRED[] = {{152, L"[%s.%s.%s]触发输出事件[按下]键盘信息为[%s]", L"a"}};
const FiringEvent KEYBOARD_EVENTS[] = {{"KeyDown", KEY_DOWN, KEY_DOWN_FIRED}};

// ---- Key check ------------------------------------------------------------------------------------------------------

constexpr int KEY_A = 65;

constexpr LookUp KEY_CHECK_LOOK_UPS[] = {
    {Place::MainWindow}, {Place::Input, ENABLE}, {Place::Input, 1102}, {Place::Input, 1103}, {Place::Key, KEY_A}};

constexpr Setting KEY_CHECK_SETTINGS[] = {{1102, KEY_A, nullptr}};

// ---- Text field -----------------------------------------------------------------------------------------------------

constexpr LookUp TEXT_FIELD_LOOK_UPS[] = {
    {Place::Input, ENABLE}, {Place::Trigger, 203}, {Place::Trigger, 204}, {Place::Output, 252}, {Place::Output, 253}};

// ---- Mouse ----------------------------------------------------------------------------------------------------------

constexpr LookUp MOUSE_LOOK_UPS[] = {
    {Place::Input, ENABLE}, {Place::Output, 366}, {Place::Output, 367}, {Place::Output, 368},
    {Place::Output, 370},   {Place::Output, 371}, {Place::Output, 372}, {Place::Output, 373},
};

SQORMouseData s_pointer(0, 400.0f, 300.0f, CPoint(640, 360), 1);

const SIOEventRecord LEFT_DOWN[] = {{DEVICE_POINTER, EVENT_LEFT_DOWN, &s_pointer}};
constexpr Fired LEFT_DOWN_FIRED[] = {{358, L"[%s.%s.%s]触发输出事件[左键按下]", L""}};
const FiringEvent MOUSE_EVENTS[] = {{"LeftDown", LEFT_DOWN, LEFT_DOWN_FIRED}};

// ---- Touch gesture --------------------------------------------------------------------------------------------------

constexpr LookUp GESTURE_LOOK_UPS[] = {{Place::Input, ENABLE}};

const SIOEventRecord TAP[] = {{DEVICE_POINTER, EVENT_LEFT_DOWN, &s_pointer},
                              {DEVICE_POINTER, EVENT_LEFT_UP, &s_pointer}};
constexpr Fired TAP_FIRED[] = {{758, L"[%s.%s.%s]触发输出事件[单击]", L""}};
SQORMouseData s_strokeStart(0, 0.0f, 0.0f, CPoint(0, 0), 0);
SQORMouseData s_strokeMiddle(0, 0.0f, 0.0f, CPoint(100, 0), 0);
SQORMouseData s_strokeEnd(0, 0.0f, 0.0f, CPoint(200, 0), 0);

const SIOEventRecord SWIPE[] = {{DEVICE_POINTER, EVENT_LEFT_DOWN, &s_strokeStart},
                                {DEVICE_POINTER, EVENT_POINTER_SAMPLE, &s_strokeMiddle},
                                {DEVICE_POINTER, EVENT_LEFT_UP, &s_strokeEnd}};
constexpr Fired SWIPE_FIRED[] = {{752, L"[%s.%s.%s]触发输出事件[开始拖动]", L""},
                                 {753, L"[%s.%s.%s]触发输出事件[结束拖动]", L""},
                                 {755, L"[%s.%s.%s]触发输出事件[向右滑动]", L""}};
// The array of the stroke's samples is made at the press and grows with each sample.
const FiringEvent GESTURE_EVENTS[] = {{"Tap", TAP, TAP_FIRED, 2}, {"Swipe", SWIPE, SWIPE_FIRED, 2}};

// ---- VR handle ------------------------------------------------------------------------------------------------------

constexpr LookUp VR_HANDLE_LOOK_UPS[] = {{Place::Input, ENABLE}, {Place::Input, 802}, {Place::Input, 803}};

constexpr Setting VR_HANDLE_SETTINGS[] = {{802, 0, MEASURED_OBJECT}};

SVRPluginData Controller(int bTrigger) {
    SVRPluginData sample;
    sample.m_bTriggerPressed = bTrigger;
    sample.m_nReleaseTime = 1000; // no click
    return sample;
}
SVRPluginData s_triggerPressed = Controller(1);
SVRPluginData s_triggerReleased = Controller(0);

const SIOEventRecord TRIGGER[] = {{DEVICE_VR_HANDLE, 0, &s_triggerPressed}, {DEVICE_VR_HANDLE, 0, &s_triggerReleased}};
constexpr Fired TRIGGER_FIRED[] = {{862, nullptr, nullptr}, {863, nullptr, nullptr}};
// Each of the two samples makes a list of what it fires, and writes six outputs.
const FiringEvent VR_HANDLE_EVENTS[] = {{"Trigger", TRIGGER, TRIGGER_FIRED, 2, 12}};

// ---- Network --------------------------------------------------------------------------------------------------------

constexpr LookUp NET_PARAMETER_SEND_LOOK_UPS[] = {
    {Place::Input, 403}, {Place::Input, 412}, {Place::Input, 404}, {Place::Input, 405}, {Place::Input, 406},
    {Place::Input, 407}, {Place::Input, 408}, {Place::Input, 409}, {Place::Input, 411}, {Place::Trigger, 410},
};

constexpr LookUp BROADCAST_SEND_LOOK_UPS[] = {
    {Place::Input, 602}, {Place::Input, 603}, {Place::Input, 604}, {Place::Input, 605}, {Place::Trigger, 606}};

constexpr LookUp BROADCAST_RECEIVE_LOOK_UPS[] = {{Place::Input, 1302}};

CQORPanelRemoteCtrlData Record() {
    CQORPanelRemoteCtrlData record;
    record.m_strClipName = MEASURED_CLIP;
    record.m_strGroupName = L"group";
    record.m_strKeyName = L"key";
    record.m_nKeyNumber = 7;
    record.m_strKeyValue = L"value";
    record.m_strHelpParameter = L"help";
    return record;
}
CQORPanelRemoteCtrlData s_record = Record();

const SIOEventRecord REMOTE_CONTROL[] = {
    {DEVICE_NETWORK, EVENT_REMOTE_CONTROL, static_cast<CQORIOAttachedData*>(&s_record)}};
constexpr Fired REMOTE_CONTROL_FIRED[] = {{554, L"[%s.%s.%s 触发[网络触发]事件]", L"", true}};
const FiringEvent NET_PARAMETER_RECEIVE_EVENTS[] = {{"Record", REMOTE_CONTROL, REMOTE_CONTROL_FIRED, 0, 5}};

constexpr Setting NET_PARAMETER_RECEIVE_SETTINGS[] = {{502, 0, L"group"}, {503, 0, L"key"}, {504, 7, nullptr}};

constexpr LookUp STRING_DATA_SEND_LOOK_UPS[] = {
    {Place::Input, 1505}, {Place::Input, 1506}, {Place::Input, 1502}, {Place::Input, 1503}, {Place::Trigger, 1507}};

// ---- JSON -----------------------------------------------------------------------------------------------------------

SObjectTextData s_objectText{nullptr, MEASURED_CLIP, MEASURED_OBJECT, L"{\"zoom\":3}"};

const SIOEventRecord OBJECT_TEXT[] = {{DEVICE_OBJECT_TEXT, 0, &s_objectText}};
constexpr Fired OBJECT_TEXT_FIRED[] = {{1253, L"[%s.%s.%s 触发[地图反馈]事件]", L"", true}};
const FiringEvent OBJECT_JSON_EVENTS[] = {{"Text", OBJECT_TEXT, OBJECT_TEXT_FIRED, 0, 4}};

constexpr Setting OBJECT_JSON_SETTINGS[] = {{1202, 0, MEASURED_CLIP}, {1203, 0, MEASURED_OBJECT}};

// ---- All ------------------------------------------------------------------------------------------------------------

/// Their evaluation reads nothing: what they need, they look up when something arrives.
constexpr std::span<const LookUp> NO_LOOK_UPS;

const MeasuredType MEASURED_TYPES[] = {
    {"Keyboard", GUID_IOPROCESS_KEYBOARD, KEYBOARD_LOOK_UPS, KEYBOARD_EVENTS},
    {"KeyCheck", GUID_IOPROCESS_KEY_CHECK, KEY_CHECK_LOOK_UPS, {}, KEY_CHECK_SETTINGS},
    {"TextField", GUID_IOPROCESS_TEXT_FIELD, TEXT_FIELD_LOOK_UPS},
    {"Mouse", GUID_IOPROCESS_MOUSE, MOUSE_LOOK_UPS, MOUSE_EVENTS},
    {"NetParameterSend", GUID_IOPROCESS_NET_PARAMETER_SEND, NET_PARAMETER_SEND_LOOK_UPS},
    {"NetParameterReceive", GUID_IOPROCESS_NET_PARAMETER_RECEIVE, NO_LOOK_UPS, NET_PARAMETER_RECEIVE_EVENTS,
     NET_PARAMETER_RECEIVE_SETTINGS},
    {"BroadcastSend", GUID_IOPROCESS_BROADCAST_SEND, BROADCAST_SEND_LOOK_UPS},
    {"BroadcastReceive", GUID_IOPROCESS_BROADCAST_RECEIVE, BROADCAST_RECEIVE_LOOK_UPS},
    {"Gesture", GUID_IOPROCESS_GESTURE, GESTURE_LOOK_UPS, GESTURE_EVENTS},
    {"VRHandle", GUID_IOPROCESS_VR_HANDLE, VR_HANDLE_LOOK_UPS, VR_HANDLE_EVENTS, VR_HANDLE_SETTINGS},
    {"ObjectJsonReceive", GUID_IOPROCESS_OBJECT_JSON_RECEIVE, NO_LOOK_UPS, OBJECT_JSON_EVENTS, OBJECT_JSON_SETTINGS},
    {"DeviceJsonReceive", GUID_IOPROCESS_DEVICE_JSON_RECEIVE, NO_LOOK_UPS},
    {"StringDataSend", GUID_IOPROCESS_STRING_DATA_SEND, STRING_DATA_SEND_LOOK_UPS},
};

} // namespace

std::span<const MeasuredType> MeasuredTypes() {
    return MEASURED_TYPES;
}
