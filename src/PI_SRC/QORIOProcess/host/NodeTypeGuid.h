// Node-type GUIDs: all types share the leading 15 bytes, the last byte names the type.
#pragma once

#include <afxwin.h>

/// {8164BB40-6B6A-4707-88B7-386BCB0D1Bxx}, here with the byte 0, which names no type.
inline constexpr GUID GUID_IOPROCESS_BASE{0x8164BB40, 0x6B6A, 0x4707, {0x88, 0xB7, 0x38, 0x6B, 0xCB, 0x0D, 0x1B, 0x00}};

constexpr GUID MakeNodeTypeGuid(unsigned char nTypeByte) {
    GUID guidType = GUID_IOPROCESS_BASE;
    guidType.Data4[7] = nTypeByte;
    return guidType;
}

inline constexpr GUID GUID_IOPROCESS_KEYBOARD = MakeNodeTypeGuid(0x01);
inline constexpr GUID GUID_IOPROCESS_TEXT_FIELD = MakeNodeTypeGuid(0x02);
inline constexpr GUID GUID_IOPROCESS_MOUSE = MakeNodeTypeGuid(0x03);
inline constexpr GUID GUID_IOPROCESS_NET_PARAMETER_SEND = MakeNodeTypeGuid(0x04);
inline constexpr GUID GUID_IOPROCESS_NET_PARAMETER_RECEIVE = MakeNodeTypeGuid(0x05);
inline constexpr GUID GUID_IOPROCESS_BROADCAST_SEND = MakeNodeTypeGuid(0x06);
inline constexpr GUID GUID_IOPROCESS_GESTURE = MakeNodeTypeGuid(0x07);
inline constexpr GUID GUID_IOPROCESS_VR_HANDLE = MakeNodeTypeGuid(0x08);
inline constexpr GUID GUID_IOPROCESS_KEY_CHECK = MakeNodeTypeGuid(0x0B);
inline constexpr GUID GUID_IOPROCESS_OBJECT_JSON_RECEIVE = MakeNodeTypeGuid(0x0C);
inline constexpr GUID GUID_IOPROCESS_BROADCAST_RECEIVE = MakeNodeTypeGuid(0x0D);
inline constexpr GUID GUID_IOPROCESS_DEVICE_JSON_RECEIVE = MakeNodeTypeGuid(0x0E);
inline constexpr GUID GUID_IOPROCESS_STRING_DATA_SEND = MakeNodeTypeGuid(0x0F);
