#include "MeasuredTypes.h"

#include "host/NodeTypeGuid.h"

namespace {

constexpr unsigned ENABLE = 2;

// ---- Keyboard -------------------------------------------------------------------------------------------------------

constexpr LookUp KEYBOARD_LOOK_UPS[] = {{Place::Input, ENABLE}, {Place::Output, 154}};

SKeyEventData s_key{nullptr, L"a"};

const FiringEvent KEYBOARD_EVENTS[] = {
    {"KeyDown", {DEVICE_KEYBOARD, EVENT_KEY_DOWN, &s_key}, 152, L"[%s.%s.%s]触发输出事件[按下]键盘信息为[%s]", L"a"},
};

// ---- Mouse ----------------------------------------------------------------------------------------------------------

constexpr LookUp MOUSE_LOOK_UPS[] = {
    {Place::Input, ENABLE}, {Place::Output, 366}, {Place::Output, 367}, {Place::Output, 368},
    {Place::Output, 370},   {Place::Output, 371}, {Place::Output, 372}, {Place::Output, 373},
};

SQORMouseData s_pointer(0, 400.0f, 300.0f, CPoint(640, 360), 1);

const FiringEvent MOUSE_EVENTS[] = {
    {"LeftDown", {DEVICE_POINTER, EVENT_LEFT_DOWN, &s_pointer}, 358, L"[%s.%s.%s]触发输出事件[左键按下]", L""},
};

const MeasuredType MEASURED_TYPES[] = {
    {"Keyboard", GUID_IOPROCESS_KEYBOARD, KEYBOARD_LOOK_UPS, KEYBOARD_EVENTS},
    {"Mouse", GUID_IOPROCESS_MOUSE, MOUSE_LOOK_UPS, MOUSE_EVENTS},
};

} // namespace

std::span<const MeasuredType> MeasuredTypes() {
    return MEASURED_TYPES;
}
