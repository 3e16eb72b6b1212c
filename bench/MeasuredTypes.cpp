#include "MeasuredTypes.h"

#include <array>
#include <iterator>
#include <utility>

#include <benchmark/benchmark.h>

#include "Population.h"
#include "host/EventRecord.h"
#include "host/HostRender.h"
#include "host/NodeTypeGuid.h"
#include "host/PlayControlDevice.h"
#include "host/RemoteControlRecord.h"

namespace {

/// Where ProcessNode looks something up.
enum class Place {
    Input,      ///< a parameter of the graph node's inputs, then of the node's own groups
    Trigger,    ///< a parameter of the graph node's inputs alone
    Output,     ///< a parameter of the graph node's outputs
    Key,        ///< the keyboard's state, by a virtual-key code
    MainWindow, ///< whether the application's main window takes input
    Device,     ///< a play-control device; there is none
};

/// One look-up.
struct LookUp {
    Place place;
    unsigned nId = 0;
};

/// Read the value; false when there is no parameter.
inline bool Read(const VEKParam* pParam) {
    if (pParam == nullptr) {
        return false;
    }
    if (pParam->m_nType == PARAM_STRING.m_nType) {
        benchmark::DoNotOptimize(*pParam->m_strValue.GetString());
    } else {
        benchmark::DoNotOptimize(pParam->m_nValue);
    }
    return true;
}

/// Look it up and read it; false when it isn't there. In a floor all is known when it's compiled, as in the node.
inline bool Read(const CPlacedNode& placed, const LookUp& lookUp) {
    const GUID guid = MakeParamGuid(lookUp.nId);
    switch (lookUp.place) {
    case Place::Input:
        return Read(QORFindParamByGuid(guid, placed.m_graphNode.m_lstInputGroup, placed.m_pNode->m_lstParamGroup));
    case Place::Trigger:
        return Read(FindParam(placed.m_graphNode.m_lstInputGroup, guid));
    case Place::Output:
        return Read(FindParam(placed.m_graphNode.m_lstOutputGroup, guid));
    case Place::Key:
        benchmark::DoNotOptimize(GetKeyState(static_cast<int>(lookUp.nId)));
        return true;
    case Place::MainWindow:
        return AfxGetApp()->GetMainWnd()->IsWindowEnabled();
    case Place::Device:
        benchmark::DoNotOptimize(G_FindNetPlayCtrlDevByID(static_cast<int>(lookUp.nId)));
        return true;
    }
    return false;
}

/// For each node one call of it, which keeps the graph node, and the look-ups.
template <const auto&... lists>
bool Floor(Nodes nodes) {
    bool bAllFound = true;
    for (const auto& pPlaced : nodes) {
        P_ExtDevIOProcess& node = *pPlaced->m_pNode;
        node.PreRender(); // no type does anything there: this is the call alone
        node.m_pBaseGraphNode = &pPlaced->m_graphNode;
        const auto readAll = [&]<const auto & lookUps, size_t... i>(std::index_sequence<i...>) {
            return (true & ... & Read(*pPlaced, lookUps[i]));
        };
        bAllFound &= (true & ... & readAll.template operator()<lists>(std::make_index_sequence<std::size(lists)>{}));
    }
    return bAllFound;
}

constexpr unsigned ENABLE = 2;

constexpr double LOG_LINE = 1;    // allocation
constexpr double EVENT_TEXTS = 4; // looked up; the host posts what nodes report to it

// ---- Keyboard -------------------------------------------------------------------------------------------------------

constexpr LookUp KEYBOARD_LOOK_UPS[] = {{Place::Input, ENABLE}, {Place::Output, 154}};

SKeyEventData s_key{nullptr, L"a"};

const SIOEventRecord KEY_DOWN[] = {{DEVICE_KEYBOARD, EVENT_KEY_DOWN, &s_key}};
constexpr int KEY_DOWN_OUTPUTS[] = {152};
const FiringEvent KEYBOARD_EVENTS[] = {{"KeyDown", KEY_DOWN, KEY_DOWN_OUTPUTS, LOG_LINE, EVENT_TEXTS}};

// ---- Key check ------------------------------------------------------------------------------------------------------

constexpr int KEY_A = 65;

constexpr LookUp KEY_CHECK_LOOK_UPS[] = {
    {Place::MainWindow}, {Place::Input, ENABLE}, {Place::Input, 1102}, {Place::Input, 1103}, {Place::Key, KEY_A}};

constexpr Setting KEY_CHECK_SETTINGS[] = {{1102, KEY_A, nullptr}};

// ---- Text field -----------------------------------------------------------------------------------------------------

constexpr LookUp TEXT_FIELD_LOOK_UPS[] = {
    {Place::Input, ENABLE}, {Place::Trigger, 203}, {Place::Trigger, 204}, {Place::Output, 252}, {Place::Output, 253}};
constexpr unsigned TEXT_FIELD_EVENT = 203;
constexpr LookUp TEXT_FIELD_TRIGGERED[] = {{Place::Input, 202}, {Place::Key, VK_CAPITAL}};

// ---- Mouse ----------------------------------------------------------------------------------------------------------

constexpr LookUp MOUSE_LOOK_UPS[] = {
    {Place::Input, ENABLE}, {Place::Output, 366}, {Place::Output, 367}, {Place::Output, 368},
    {Place::Output, 370},   {Place::Output, 371}, {Place::Output, 372}, {Place::Output, 373},
};

SQORMouseData s_pointer(0, 400.0f, 300.0f, CPoint(640, 360), 1);

const SIOEventRecord LEFT_DOWN[] = {{DEVICE_POINTER, EVENT_LEFT_DOWN, &s_pointer}};
constexpr int LEFT_DOWN_OUTPUTS[] = {358};
const FiringEvent MOUSE_EVENTS[] = {{"LeftDown", LEFT_DOWN, LEFT_DOWN_OUTPUTS, LOG_LINE, EVENT_TEXTS}};

// ---- Touch gesture --------------------------------------------------------------------------------------------------

constexpr LookUp GESTURE_LOOK_UPS[] = {{Place::Input, ENABLE}};

const SIOEventRecord TAP[] = {{DEVICE_POINTER, EVENT_LEFT_DOWN, &s_pointer},
                              {DEVICE_POINTER, EVENT_LEFT_UP, &s_pointer}};
constexpr int TAP_OUTPUTS[] = {758};
SQORMouseData s_strokeStart(0, 0.0f, 0.0f, CPoint(0, 0), 0);
SQORMouseData s_strokeMiddle(0, 0.0f, 0.0f, CPoint(100, 0), 0);
SQORMouseData s_strokeEnd(0, 0.0f, 0.0f, CPoint(200, 0), 0);

const SIOEventRecord SWIPE[] = {{DEVICE_POINTER, EVENT_LEFT_DOWN, &s_strokeStart},
                                {DEVICE_POINTER, EVENT_POINTER_SAMPLE, &s_strokeMiddle},
                                {DEVICE_POINTER, EVENT_LEFT_UP, &s_strokeEnd}};
constexpr int SWIPE_OUTPUTS[] = {752, 753, 755}; // begin and end of the drag, swipe to the right
// The array of the stroke's samples is made at the press and grows with each sample.
const FiringEvent GESTURE_EVENTS[] = {{"Tap", TAP, TAP_OUTPUTS, 2 + LOG_LINE, EVENT_TEXTS},
                                      {"Swipe", SWIPE, SWIPE_OUTPUTS, 2 + 3 * LOG_LINE, 3 * EVENT_TEXTS}};

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
constexpr int TRIGGER_OUTPUTS[] = {862, 863};
// Each of the two samples makes a list of what it fires, moves the object and writes six outputs.
const FiringEvent VR_HANDLE_EVENTS[] = {{"Trigger", TRIGGER, TRIGGER_OUTPUTS, 2, 2 * (1 + 6 + EVENT_TEXTS)}};

// ---- Network --------------------------------------------------------------------------------------------------------

constexpr LookUp NET_PARAMETER_SEND_LOOK_UPS[] = {
    {Place::Input, 403}, {Place::Input, 412}, {Place::Input, 404}, {Place::Input, 405}, {Place::Input, 406},
    {Place::Input, 407}, {Place::Input, 408}, {Place::Input, 409}, {Place::Input, 411}, {Place::Trigger, 410},
};
constexpr unsigned NET_PARAMETER_SEND = 410;
constexpr LookUp NET_PARAMETER_SEND_TRIGGERED[] = {{Place::Input, 402}, {Place::Device, 3}};

constexpr Setting NET_PARAMETER_SEND_SETTINGS[] = {{402, 0, L"3"}, {412, 1, nullptr}};

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
constexpr int REMOTE_CONTROL_OUTPUTS[] = {554};
const FiringEvent NET_PARAMETER_RECEIVE_EVENTS[] = {{"Record", REMOTE_CONTROL, REMOTE_CONTROL_OUTPUTS, LOG_LINE, 5}};

constexpr Setting NET_PARAMETER_RECEIVE_SETTINGS[] = {{502, 0, L"group"}, {503, 0, L"key"}, {504, 7, nullptr}};

constexpr LookUp STRING_DATA_SEND_LOOK_UPS[] = {
    {Place::Input, 1505}, {Place::Input, 1506}, {Place::Input, 1502}, {Place::Input, 1503}, {Place::Trigger, 1507}};
constexpr unsigned STRING_DATA_SEND = 1507;
constexpr LookUp STRING_DATA_SEND_TRIGGERED[] = {{Place::Device, 3}};

constexpr Setting STRING_DATA_SEND_SETTINGS[] = {{1502, 1, nullptr}, {1503, 3, nullptr}};

// ---- JSON -----------------------------------------------------------------------------------------------------------

SObjectTextData s_objectText{nullptr, MEASURED_CLIP, MEASURED_OBJECT, L"{\"zoom\":3}"};

const SIOEventRecord OBJECT_TEXT[] = {{DEVICE_OBJECT_TEXT, 0, &s_objectText}};
constexpr int OBJECT_TEXT_OUTPUTS[] = {1253};
const FiringEvent OBJECT_JSON_EVENTS[] = {{"Text", OBJECT_TEXT, OBJECT_TEXT_OUTPUTS, LOG_LINE, 4}};

constexpr Setting OBJECT_JSON_SETTINGS[] = {{1202, 0, MEASURED_CLIP}, {1203, 0, MEASURED_OBJECT}};

// ---- All ------------------------------------------------------------------------------------------------------------

/// Their evaluation reads nothing: what they need, they look up when something arrives.
constexpr std::array<LookUp, 0> NO_LOOK_UPS;

const MeasuredType MEASURED_TYPES[] = {
    {"Keyboard", GUID_IOPROCESS_KEYBOARD, Floor<KEYBOARD_LOOK_UPS>, KEYBOARD_EVENTS},
    {"KeyCheck", GUID_IOPROCESS_KEY_CHECK, Floor<KEY_CHECK_LOOK_UPS>, {}, KEY_CHECK_SETTINGS},
    {"TextField",
     GUID_IOPROCESS_TEXT_FIELD,
     Floor<TEXT_FIELD_LOOK_UPS>,
     {},
     {},
     TEXT_FIELD_EVENT,
     Floor<TEXT_FIELD_LOOK_UPS, TEXT_FIELD_TRIGGERED>},
    {"Mouse", GUID_IOPROCESS_MOUSE, Floor<MOUSE_LOOK_UPS>, MOUSE_EVENTS},
    {"NetParameterSend",
     GUID_IOPROCESS_NET_PARAMETER_SEND,
     Floor<NET_PARAMETER_SEND_LOOK_UPS>,
     {},
     NET_PARAMETER_SEND_SETTINGS,
     NET_PARAMETER_SEND,
     Floor<NET_PARAMETER_SEND_LOOK_UPS, NET_PARAMETER_SEND_TRIGGERED>},
    {"NetParameterReceive", GUID_IOPROCESS_NET_PARAMETER_RECEIVE, Floor<NO_LOOK_UPS>, NET_PARAMETER_RECEIVE_EVENTS,
     NET_PARAMETER_RECEIVE_SETTINGS},
    {"BroadcastSend", GUID_IOPROCESS_BROADCAST_SEND, Floor<BROADCAST_SEND_LOOK_UPS>},
    {"BroadcastReceive", GUID_IOPROCESS_BROADCAST_RECEIVE, Floor<BROADCAST_RECEIVE_LOOK_UPS>},
    {"Gesture", GUID_IOPROCESS_GESTURE, Floor<GESTURE_LOOK_UPS>, GESTURE_EVENTS},
    {"VRHandle", GUID_IOPROCESS_VR_HANDLE, Floor<VR_HANDLE_LOOK_UPS>, VR_HANDLE_EVENTS, VR_HANDLE_SETTINGS},
    {"ObjectJsonReceive", GUID_IOPROCESS_OBJECT_JSON_RECEIVE, Floor<NO_LOOK_UPS>, OBJECT_JSON_EVENTS,
     OBJECT_JSON_SETTINGS},
    {"DeviceJsonReceive", GUID_IOPROCESS_DEVICE_JSON_RECEIVE, Floor<NO_LOOK_UPS>},
    {"StringDataSend",
     GUID_IOPROCESS_STRING_DATA_SEND,
     Floor<STRING_DATA_SEND_LOOK_UPS>,
     {},
     STRING_DATA_SEND_SETTINGS,
     STRING_DATA_SEND,
     Floor<STRING_DATA_SEND_LOOK_UPS, STRING_DATA_SEND_TRIGGERED>},
};

} // namespace

std::span<const MeasuredType> MeasuredTypes() {
    return MEASURED_TYPES;
}
