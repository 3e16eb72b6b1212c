// The numbers that host and module agree on, under this project's names. No class of the host is needed here, so this
// header also works with another host's headers.
#pragma once

#include <afxwin.h>

/// Identity of a parameter, group or output: the null GUID with its first 32-bit word replaced by a small id.
/// Ids are unique within one node type only.
constexpr GUID MakeParamGuid(unsigned nId) {
    return GUID{nId, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};
}

/// Type and control code of a parameter, by which the host chooses the editor control. They tell the value it carries.
struct ParamCodes {
    int m_nType;
    int m_nControl;
};

inline constexpr ParamCodes PARAM_SWITCH{5, 5};     ///< integer 0 or 1
inline constexpr ParamCodes PARAM_SWITCH_BOX{5, 1}; ///< integer 0 or 1, the other control
inline constexpr ParamCodes PARAM_INTEGER{2, 1};    ///< 32-bit integer
inline constexpr ParamCodes PARAM_FLOAT{2, 2};      ///< 32-bit float
inline constexpr ParamCodes PARAM_STRING{1, 6};     ///< string
inline constexpr ParamCodes PARAM_CHOICE{4, 1};     ///< integer index into the choice labels
inline constexpr ParamCodes PARAM_KEY_CODE{38, 1};  ///< virtual-key code with modifier bits
inline constexpr ParamCodes PARAM_EVENT{26, 7};     ///< no stored value: fired, or read as a trigger (integer not 0)
inline constexpr ParamCodes PARAM_POINTER{0, 8};    ///< pointer plus the name of the pointee's type

/// Kind code of every IO-process node.
inline constexpr int KIND_IO_PROCESS = 247;

/// Source of an event.
enum EIODevice : int {
    DEVICE_KEYBOARD = 0,
    DEVICE_POINTER = 1,
    DEVICE_NETWORK = 2,
    DEVICE_VR_HANDLE = 3,
    DEVICE_NETWORK_CONTROL = 4,
    DEVICE_TEXT = 5,
    DEVICE_OBJECT_TEXT = 6,
};

/// Events of DEVICE_KEYBOARD; the payload is an SKeyEventData.
enum EKeyEvent : int { EVENT_KEY_DOWN = 2002, EVENT_KEY_UP = 2003 };

/// Events of DEVICE_POINTER; the payload is an SQORMouseData. The middle button's ids come before the right one's.
enum EPointerEvent : int {
    EVENT_ENTER_WINDOW = 3002,
    EVENT_LEAVE_WINDOW = 3003,
    EVENT_HOVER = 3004,
    EVENT_LEFT_DOWN = 3005,
    EVENT_LEFT_UP = 3006,
    EVENT_MIDDLE_DOWN = 3007,
    EVENT_MIDDLE_UP = 3008,
    EVENT_RIGHT_DOWN = 3009,
    EVENT_RIGHT_UP = 3010,
    EVENT_WHEEL_UP = 3011,
    EVENT_WHEEL_DOWN = 3012,
    EVENT_POINTER_SAMPLE = 3013,
};

/// Events of DEVICE_NETWORK. DEVICE_NETWORK_CONTROL has the first one alone.
enum ENetworkEvent : int {
    EVENT_REMOTE_CONTROL = 0, ///< the payload is the CQORIOAttachedData part of a CQORPanelRemoteCtrlData
    EVENT_BROADCAST = 1,      ///< the payload is an SBroadcastItem
};

/// Levels of log lines: an event fired, bad or missing input.
enum ELogLevel : int { LEVEL_INFORMATION = 4, LEVEL_ERROR = 32 };

/// Id of the event object that carries a fired output.
inline constexpr int GENERAL_EVENT = 2;

/// Command code of a play-control item that carries a remote-control record.
inline constexpr int COMMAND_REMOTE_CONTROL = 50;

/// Kind of the configuration folder, for PXGetPath.
inline constexpr int PATH_CONFIG = 10;

/// What SplitString does with empty pieces.
enum ESplitOption : int { SPLIT_SKIP_EMPTY = 0, SPLIT_KEEP_EMPTY = 1 };
