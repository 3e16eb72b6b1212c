#include "nodes/input/MouseNode.h"

#include "host/NodeSupport.h"
#include "host/NodeTables.h"
#include "host/NodeTypeGuid.h"

namespace {

enum : unsigned {
    INPUT_GROUP = 301,

    OUTPUT_GROUP = 351,
    OUTPUT_ENTER_WINDOW = 352,
    OUTPUT_LEAVE_WINDOW = 353,
    OUTPUT_HOVER = 354,
    OUTPUT_WHEEL_UP = 355,
    OUTPUT_WHEEL_DOWN = 356,

    OUTPUT_DOWN_GROUP = 357,
    OUTPUT_LEFT_DOWN = 358,
    OUTPUT_RIGHT_DOWN = 359,
    OUTPUT_MIDDLE_DOWN = 360,

    OUTPUT_UP_GROUP = 361,
    OUTPUT_LEFT_UP = 362,
    OUTPUT_RIGHT_UP = 363,
    OUTPUT_MIDDLE_UP = 364,

    OUTPUT_BUTTON_GROUP = 365,
    OUTPUT_BUTTON_LEFT = 366,
    OUTPUT_BUTTON_RIGHT = 367,
    OUTPUT_BUTTON_MIDDLE = 368,

    OUTPUT_POSITION_GROUP = 369,
    OUTPUT_PIXEL_X = 370,
    OUTPUT_PIXEL_Y = 371,
    OUTPUT_RELATIVE_X = 372,
    OUTPUT_RELATIVE_Y = 373,
};

constexpr ParamRow INPUTS[] = {ENABLE_ROW};

constexpr GroupRow INPUT_GROUP_ROW{
    .nId = INPUT_GROUP, .pszName = L"Base param", .pszDisplayKey = L"IO_PROCESS_MOUSE", .params = INPUTS};

constexpr ParamRow ButtonRow(unsigned nId, const wchar_t* pszName, const wchar_t* pszDisplayKey) {
    return {.nId = nId,
            .pszName = pszName,
            .pszDisplayKey = pszDisplayKey,
            .codes = PARAM_SWITCH,
            .range = RANGE_SWITCH,
            .flags = FLAGS_NONE};
}

constexpr ParamRow PositionRow(unsigned nId, const wchar_t* pszName, const wchar_t* pszDisplayKey, ParamCodes codes,
                               std::optional<ParamFlags> flags) {
    return {.nId = nId,
            .pszName = pszName,
            .pszDisplayKey = pszDisplayKey,
            .codes = codes,
            .range = ParamRange{0, -1e9f, 1e9f, 1},
            .flags = flags};
}

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

constexpr ParamRow BUTTON_OUTPUTS[] = {
    ButtonRow(OUTPUT_BUTTON_LEFT, L"ButtonL", L"IO_PROCESS_MOUSE_BUTTON_L"),
    ButtonRow(OUTPUT_BUTTON_RIGHT, L"ButtonR", L"IO_PROCESS_MOUSE_BUTTON_R"),
    ButtonRow(OUTPUT_BUTTON_MIDDLE, L"ButtonM", L"IO_PROCESS_MOUSE_BUTTON_M"),
};

constexpr ParamRow POSITION_OUTPUTS[] = {
    PositionRow(OUTPUT_PIXEL_X, L"PixelX", L"IO_PROCESS_MOUSE_PIXELX", PARAM_INTEGER, FLAGS_ORDINARY),
    // PixelY alone keeps the host's default flags.
    PositionRow(OUTPUT_PIXEL_Y, L"PixelY", L"IO_PROCESS_MOUSE_PIXELY", PARAM_INTEGER, std::nullopt),
    PositionRow(OUTPUT_RELATIVE_X, L"RelativeX", L"IO_PROCESS_MOUSE_RELATIVEX", PARAM_FLOAT, FLAGS_ORDINARY),
    PositionRow(OUTPUT_RELATIVE_Y, L"RelativeY", L"IO_PROCESS_MOUSE_RELATIVEY", PARAM_FLOAT, FLAGS_ORDINARY),
};

constexpr GroupRow OUTPUT_GROUPS[] = {
    {.nId = OUTPUT_GROUP, .pszName = L"Output", .pszDisplayKey = L"IO_PROCESS_MOUSE", .params = WINDOW_OUTPUTS},
    {.nId = OUTPUT_DOWN_GROUP,
     .pszName = L"Pressed",
     .pszDisplayKey = L"IO_PROCESS_KEYBOARD_KEYDOWN",
     .params = DOWN_OUTPUTS},
    // Named like the group before it, as its outputs are.
    {.nId = OUTPUT_UP_GROUP,
     .pszName = L"Pressed",
     .pszDisplayKey = L"IO_PROCESS_KEYBOARD_KEYUP",
     .params = UP_OUTPUTS},
    {.nId = OUTPUT_BUTTON_GROUP,
     .pszName = L"Button",
     .pszDisplayKey = L"IO_PROCESS_MOUSE_BUTTON",
     .params = BUTTON_OUTPUTS},
    {.nId = OUTPUT_POSITION_GROUP,
     .pszName = L"Position",
     .pszDisplayKey = L"IO_PROCESS_MOUSE_POSITION",
     .params = POSITION_OUTPUTS},
};

CParamLayout s_layout;

} // namespace

/// What an event id does: sets a button's state, fires an output.
struct CMouseIOProcess::PointerEventRow {
    int nEvent;
    unsigned nOutput;
    const wchar_t* pszLogFormat;
    int CMouseIOProcess::*pButton = nullptr; ///< null: no button changes
    int bHeld = 0;
};

// The host's ids run left, middle, right; the outputs run left, right, middle.
constexpr CMouseIOProcess::PointerEventRow CMouseIOProcess::POINTER_EVENTS[] = {
    {EVENT_ENTER_WINDOW, OUTPUT_ENTER_WINDOW, L"[%s.%s.%s]触发输出事件[进入窗口]"},
    {EVENT_LEAVE_WINDOW, OUTPUT_LEAVE_WINDOW, L"[%s.%s.%s]触发输出事件[离开窗口]"},
    {EVENT_HOVER, OUTPUT_HOVER, L"[%s.%s.%s]触发输出事件[停留]"},
    {EVENT_LEFT_DOWN, OUTPUT_LEFT_DOWN, L"[%s.%s.%s]触发输出事件[左键按下]", &CMouseIOProcess::m_bButtonLeft, 1},
    {EVENT_LEFT_UP, OUTPUT_LEFT_UP, L"[%s.%s.%s]触发输出事件[左键抬起]", &CMouseIOProcess::m_bButtonLeft, 0},
    {EVENT_MIDDLE_DOWN, OUTPUT_MIDDLE_DOWN, L"[%s.%s.%s]触发输出事件[中键按下]", &CMouseIOProcess::m_bButtonMiddle, 1},
    {EVENT_MIDDLE_UP, OUTPUT_MIDDLE_UP, L"[%s.%s.%s]触发输出事件[中键抬起]", &CMouseIOProcess::m_bButtonMiddle, 0},
    {EVENT_RIGHT_DOWN, OUTPUT_RIGHT_DOWN, L"[%s.%s.%s]触发输出事件[右键按下]", &CMouseIOProcess::m_bButtonRight, 1},
    {EVENT_RIGHT_UP, OUTPUT_RIGHT_UP, L"[%s.%s.%s]触发输出事件[右键抬起]", &CMouseIOProcess::m_bButtonRight, 0},
    {EVENT_WHEEL_UP, OUTPUT_WHEEL_UP, L"[%s.%s.%s]触发输出事件[向上滚动]"},
    {EVENT_WHEEL_DOWN, OUTPUT_WHEEL_DOWN, L"[%s.%s.%s]触发输出事件[向下滚动]"},
};

CMouseIOProcess::CMouseIOProcess() : m_mouseData(0, 0.0f, 0.0f, CPoint(0, 0), 0) {
    m_nKindCode = KIND_IO_PROCESS;
    m_guidType = GUID_IOPROCESS_MOUSE;
    AppendInputGroup(m_lstParamGroup, INPUT_GROUP_ROW);
}

CMouseIOProcess::~CMouseIOProcess() = default;

void CMouseIOProcess::GetNodeOutput(SGraphNode* pGraphNode) {
    AppendOutputGroupsOnce(pGraphNode, OUTPUT_GROUPS);
}

int CMouseIOProcess::ProcessNode(SGraphNode* pGraphNode) try {
    m_pGraphNode = pGraphNode;
    if (pGraphNode == nullptr) {
        return 0;
    }
    const VEKParam* pEnable = FindInput(*this, *pGraphNode, PARAM_ENABLE);
    if (pEnable == nullptr) {
        return 0;
    }
    m_bEnable = pEnable->m_nValue;
    if (m_bEnable == 0) {
        return 0;
    }
    WriteOutput(*pGraphNode, OUTPUT_BUTTON_LEFT, &VEKParam::m_nValue, m_bButtonLeft);
    WriteOutput(*pGraphNode, OUTPUT_BUTTON_RIGHT, &VEKParam::m_nValue, m_bButtonRight);
    WriteOutput(*pGraphNode, OUTPUT_BUTTON_MIDDLE, &VEKParam::m_nValue, m_bButtonMiddle);
    WriteOutput(*pGraphNode, OUTPUT_PIXEL_X, &VEKParam::m_nValue, static_cast<int>(m_mouseData.m_ptPixel.x));
    WriteOutput(*pGraphNode, OUTPUT_PIXEL_Y, &VEKParam::m_nValue, static_cast<int>(m_mouseData.m_ptPixel.y));
    WriteOutput(*pGraphNode, OUTPUT_RELATIVE_X, &VEKParam::m_fValue, m_mouseData.m_fRelativeX);
    WriteOutput(*pGraphNode, OUTPUT_RELATIVE_Y, &VEKParam::m_fValue, m_mouseData.m_fRelativeY);
    return 1;
} catch (...) {
    return RejectFailure();
}

int CMouseIOProcess::DevIOEventOccurred(const SIOEventRecord* pRecord) try {
    if (m_pOwnerClip == nullptr || m_pGraphNode == nullptr) {
        return 0;
    }
    if (pRecord == nullptr) {
        return RejectNullRecord(*this, *m_pGraphNode);
    }
    if (pRecord->m_nDevice != DEVICE_POINTER || m_bEnable == 0) {
        return 0;
    }
    if (pRecord->m_nEvent == EVENT_POINTER_SAMPLE && pRecord->m_pPayload != nullptr) {
        m_mouseData = *static_cast<const SQORMouseData*>(pRecord->m_pPayload);
    }
    for (const PointerEventRow& row : POINTER_EVENTS) {
        if (row.nEvent == pRecord->m_nEvent) {
            if (row.pButton != nullptr) {
                this->*row.pButton = row.bHeld;
            }
            WriteNodeLog(LOG_INFORMATION, *this, *m_pGraphNode, row.pszLogFormat);
            FireGeneralEvent(this, static_cast<int>(row.nOutput));
        }
    }
    return 1;
} catch (...) {
    return RejectFailure();
}

CVEKXml* CMouseIOProcess::GetXmlReader() {
    return s_layout.Reader();
}

int* CMouseIOProcess::GetXmlLoadStatePtr() {
    return s_layout.LoadState();
}

CString CMouseIOProcess::GetCtrlPosXmlPath() {
    return ParamLayoutPath(L"CVEKIOMouse.XML");
}

NodeParamInfoGrpArray* CMouseIOProcess::GetNodeParamInfoGrpAr() {
    return s_layout.Groups(*this);
}

void CMouseIOProcess::ReleaseLayout() {
    s_layout.Release();
}
