#include "nodes/input/MouseNode.h"

#include "host/NodeTypeGuid.h"
#include "nodes/shared/NodeSupport.h"
#include "nodes/shared/SharedRows.h"

namespace {

enum { OUTPUT_ENTER_WINDOW = 352, OUTPUT_LEAVE_WINDOW = 353, OUTPUT_HOVER = 354 };
enum { OUTPUT_WHEEL_UP = 355, OUTPUT_WHEEL_DOWN = 356 };
enum { OUTPUT_LEFT_DOWN = 358, OUTPUT_RIGHT_DOWN = 359, OUTPUT_MIDDLE_DOWN = 360 };
enum { OUTPUT_LEFT_UP = 362, OUTPUT_RIGHT_UP = 363, OUTPUT_MIDDLE_UP = 364 };
enum { OUTPUT_BUTTON_LEFT = 366, OUTPUT_BUTTON_RIGHT = 367, OUTPUT_BUTTON_MIDDLE = 368 };
enum { OUTPUT_PIXEL_X = 370, OUTPUT_PIXEL_Y = 371, OUTPUT_RELATIVE_X = 372, OUTPUT_RELATIVE_Y = 373 };

constexpr ParamRow INPUTS[] = {ENABLE_ROW};

constexpr ParamRow WINDOW_OUTPUTS[] = {
    EventRow(OUTPUT_ENTER_WINDOW, L"EnterWin", L"IO_PROCESS_MOUSE_ENTERWIN"),
    EventRow(OUTPUT_LEAVE_WINDOW, L"LeaveWin", L"IO_PROCESS_MOUSE_LEAVEWIN"),
    EventRow(OUTPUT_HOVER, L"Hover", L"IO_PROCESS_MOUSE_HOVER"),
    EventRow(OUTPUT_WHEEL_UP, L"WheelUp", L"IO_PROCESS_MOUSE_WHEELUP"),
    EventRow(OUTPUT_WHEEL_DOWN, L"WheelDown", L"IO_PROCESS_MOUSE_WHEELDOWN"),
};

constexpr ParamRow DOWN_OUTPUTS[] = {
    EventRow(OUTPUT_LEFT_DOWN, L"PressedL", L"IO_PROCESS_MOUSE_DOWN_L"),
    EventRow(OUTPUT_RIGHT_DOWN, L"PressedR", L"IO_PROCESS_MOUSE_DOWN_R"),
    EventRow(OUTPUT_MIDDLE_DOWN, L"PressedM", L"IO_PROCESS_MOUSE_DOWN_M"),
};

// The released outputs carry the names of the pressed ones; saved projects tell them apart by id.
constexpr ParamRow UP_OUTPUTS[] = {
    EventRow(OUTPUT_LEFT_UP, L"PressedL", L"IO_PROCESS_MOUSE_UP_L"),
    EventRow(OUTPUT_RIGHT_UP, L"PressedR", L"IO_PROCESS_MOUSE_UP_R"),
    EventRow(OUTPUT_MIDDLE_UP, L"PressedM", L"IO_PROCESS_MOUSE_UP_M"),
};

constexpr ParamRow ButtonRow(unsigned nId, const wchar_t* pszName, const wchar_t* pszDisplayKey) {
    return {nId, pszName, pszDisplayKey, PARAM_SWITCH, RANGE_SWITCH, FLAGS_NONE};
}

constexpr ParamRow BUTTON_OUTPUTS[] = {
    ButtonRow(OUTPUT_BUTTON_LEFT, L"ButtonL", L"IO_PROCESS_MOUSE_BUTTON_L"),
    ButtonRow(OUTPUT_BUTTON_RIGHT, L"ButtonR", L"IO_PROCESS_MOUSE_BUTTON_R"),
    ButtonRow(OUTPUT_BUTTON_MIDDLE, L"ButtonM", L"IO_PROCESS_MOUSE_BUTTON_M"),
};

constexpr ParamRange RANGE_POSITION{0, -1e9f, 1e9f, 1};

constexpr ParamRow POSITION_OUTPUTS[] = {
    {OUTPUT_PIXEL_X, L"PixelX", L"IO_PROCESS_MOUSE_PIXELX", PARAM_INTEGER, RANGE_POSITION, FLAGS_ORDINARY},
    // PixelY alone keeps the host's default flags.
    {OUTPUT_PIXEL_Y, L"PixelY", L"IO_PROCESS_MOUSE_PIXELY", PARAM_INTEGER, RANGE_POSITION, std::nullopt},
    {OUTPUT_RELATIVE_X, L"RelativeX", L"IO_PROCESS_MOUSE_RELATIVEX", PARAM_FLOAT, RANGE_POSITION, FLAGS_ORDINARY},
    {OUTPUT_RELATIVE_Y, L"RelativeY", L"IO_PROCESS_MOUSE_RELATIVEY", PARAM_FLOAT, RANGE_POSITION, FLAGS_ORDINARY},
};

constexpr GroupRow OUTPUT_GROUPS[] = {
    {351, L"Output", L"IO_PROCESS_MOUSE", WINDOW_OUTPUTS},
    {357, L"Pressed", L"IO_PROCESS_KEYBOARD_KEYDOWN", DOWN_OUTPUTS},
    // Named like the group before it, as its outputs are.
    {361, L"Pressed", L"IO_PROCESS_KEYBOARD_KEYUP", UP_OUTPUTS},
    {365, L"Button", L"IO_PROCESS_MOUSE_BUTTON", BUTTON_OUTPUTS},
    {369, L"Position", L"IO_PROCESS_MOUSE_POSITION", POSITION_OUTPUTS},
};

// The host's ids run left, middle, right; the outputs run left, right, middle.
constexpr FiredRow FIRED[] = {
    {EVENT_ENTER_WINDOW, OUTPUT_ENTER_WINDOW, L"[%s.%s.%s]触发输出事件[进入窗口]"},
    {EVENT_LEAVE_WINDOW, OUTPUT_LEAVE_WINDOW, L"[%s.%s.%s]触发输出事件[离开窗口]"},
    {EVENT_HOVER, OUTPUT_HOVER, L"[%s.%s.%s]触发输出事件[停留]"},
    {EVENT_LEFT_DOWN, OUTPUT_LEFT_DOWN, L"[%s.%s.%s]触发输出事件[左键按下]"},
    {EVENT_LEFT_UP, OUTPUT_LEFT_UP, L"[%s.%s.%s]触发输出事件[左键抬起]"},
    {EVENT_MIDDLE_DOWN, OUTPUT_MIDDLE_DOWN, L"[%s.%s.%s]触发输出事件[中键按下]"},
    {EVENT_MIDDLE_UP, OUTPUT_MIDDLE_UP, L"[%s.%s.%s]触发输出事件[中键抬起]"},
    {EVENT_RIGHT_DOWN, OUTPUT_RIGHT_DOWN, L"[%s.%s.%s]触发输出事件[右键按下]"},
    {EVENT_RIGHT_UP, OUTPUT_RIGHT_UP, L"[%s.%s.%s]触发输出事件[右键抬起]"},
    {EVENT_WHEEL_UP, OUTPUT_WHEEL_UP, L"[%s.%s.%s]触发输出事件[向上滚动]"},
    {EVENT_WHEEL_DOWN, OUTPUT_WHEEL_DOWN, L"[%s.%s.%s]触发输出事件[向下滚动]"},
};

CControlLayout s_layout(2, L"CVEKIOMouse.XML");

} // namespace

const NodeType CMouseIOProcess::TYPE{
    GUID_IOPROCESS_MOUSE, {301, L"Base param", L"IO_PROCESS_MOUSE", INPUTS}, OUTPUT_GROUPS, &s_layout};

int CMouseIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    m_pGraphNode = pGraphNode;
    if (pGraphNode == nullptr || !ReadEnable(*this, *pGraphNode, m_bEnable)) {
        return 0;
    }
    WriteOutput(*pGraphNode, OUTPUT_BUTTON_LEFT, m_bButtonLeft);
    WriteOutput(*pGraphNode, OUTPUT_BUTTON_RIGHT, m_bButtonRight);
    WriteOutput(*pGraphNode, OUTPUT_BUTTON_MIDDLE, m_bButtonMiddle);
    WriteOutput(*pGraphNode, OUTPUT_PIXEL_X, static_cast<int>(PixelOf(m_mouseData).x));
    WriteOutput(*pGraphNode, OUTPUT_PIXEL_Y, static_cast<int>(PixelOf(m_mouseData).y));
    WriteOutput(*pGraphNode, OUTPUT_RELATIVE_X, RelativeXOf(m_mouseData));
    WriteOutput(*pGraphNode, OUTPUT_RELATIVE_Y, RelativeYOf(m_mouseData));
    return 1;
} catch (...) {
    return EndException();
}

int CMouseIOProcess::DevIOEventOccurred(EventRecordPtr pRecord) try {
    if (!CheckRecord(pRecord, *this, m_pGraphNode) || DeviceOf(*pRecord) != DEVICE_POINTER || m_bEnable == 0) {
        return 0;
    }
    const int nEvent = EventOf(*pRecord);
    if (nEvent == EVENT_LEFT_DOWN || nEvent == EVENT_LEFT_UP) {
        m_bButtonLeft = nEvent == EVENT_LEFT_DOWN ? 1 : 0;
    } else if (nEvent == EVENT_MIDDLE_DOWN || nEvent == EVENT_MIDDLE_UP) {
        m_bButtonMiddle = nEvent == EVENT_MIDDLE_DOWN ? 1 : 0;
    } else if (nEvent == EVENT_RIGHT_DOWN || nEvent == EVENT_RIGHT_UP) {
        m_bButtonRight = nEvent == EVENT_RIGHT_DOWN ? 1 : 0;
    } else if (nEvent == EVENT_POINTER_SAMPLE && PayloadOf(*pRecord) != nullptr) {
        m_mouseData = *static_cast<const SQORMouseData*>(PayloadOf(*pRecord));
    }
    if (const FiredRow* pFired = FindFired(FIRED, nEvent)) {
        LogAndFire(*this, *m_pGraphNode, *pFired);
    }
    return 1;
} catch (...) {
    return EndException();
}
