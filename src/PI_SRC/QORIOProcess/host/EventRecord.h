// The event record that the host hands to DevIOEventOccurred, and the payloads that it points at.
#pragma once

#include "HostRender.h"

/// What the host hands to a node. The record and its payload belong to the host and live for the call only.
struct SIOEventRecord {
    int m_nDevice;    ///< EIODevice
    int m_nEvent;     ///< what happened; ids per device
    void* m_pPayload; ///< payload of the device's own type; may be null
};

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

/// Payload of a key event.
struct SKeyEventData {
    void* m_pReserved = nullptr; ///< the host's; not read by nodes
    CString m_strText;           ///< text of the key; may be empty
};

/// Payload of DEVICE_TEXT: a text that a device sent.
struct SDeviceTextData {
    void* m_pReserved = nullptr; ///< the host's; not read by nodes
    int m_nDeviceId = 0;         ///< number of the device
    CString m_strText;
};

/// Payload of DEVICE_OBJECT_TEXT: a text that is addressed to one object of one clip.
struct SObjectTextData {
    void* m_pReserved = nullptr; ///< the host's; not read by nodes
    CString m_strClipName;
    CString m_strObjectName;
    CString m_strText;
};
