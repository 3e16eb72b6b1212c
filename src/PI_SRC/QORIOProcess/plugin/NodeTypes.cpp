#include "plugin/NodeTypes.h"

#include "host/NodeTypeGuid.h"
#include "nodes/input/GestureNode.h"
#include "nodes/input/KeyCheckNode.h"
#include "nodes/input/KeyboardNode.h"
#include "nodes/input/MouseNode.h"
#include "nodes/input/TextFieldNode.h"
#include "nodes/input/VRHandleNode.h"
#include "nodes/json/DeviceJsonReceiveNode.h"
#include "nodes/json/ObjectJsonReceiveNode.h"
#include "nodes/network/BroadcastReceiveNode.h"
#include "nodes/network/BroadcastSendNode.h"
#include "nodes/network/NetParameterReceiveNode.h"
#include "nodes/network/NetParameterSendNode.h"
#include "nodes/network/StringDataSendNode.h"

namespace {

template <typename NodeClass>
P_ExtDevIOProcess* Create() {
    return new NodeClass;
}

constexpr Visibility CARRIED_OVER{Visibility::CARRIED_OVER};
constexpr Visibility ALWAYS{Visibility::ALWAYS};

constexpr Visibility FromIni(const wchar_t* pszIniKey, int nDefault) {
    return {Visibility::INI_ENTRY, pszIniKey, nDefault};
}

constexpr NodeTypeRow NODE_TYPES[] = {
    {GUID_IOPROCESS_KEYBOARD, L"IO_PROCESS_KEYBOARD", 7000, CARRIED_OVER, Create<CKeyboardIOProcess>, true},
    // Destroying a key check node only unlinks it; hosts rely on the node living on.
    {GUID_IOPROCESS_KEY_CHECK, L"IO_PROCESS_KEY_CHECK", 7009, CARRIED_OVER, Create<CKeyCheckProcess>, false},
    {GUID_IOPROCESS_TEXT_FIELD, L"IO_PROCESS_TEXTFIELDINPUT", 7001, CARRIED_OVER, Create<CTextFieldInputProcess>, true},
    {GUID_IOPROCESS_MOUSE, L"IO_PROCESS_MOUSE", 7002, CARRIED_OVER, Create<CMouseIOProcess>, true},
    {GUID_IOPROCESS_NET_PARAMETER_SEND, L"IO_PROCESS_NETSEND", 7004, FromIni(L"NetParameterSend", 0),
     Create<CNetParameterSendIOProcess>, true},
    {GUID_IOPROCESS_NET_PARAMETER_RECEIVE, L"IO_PROCESS_NETRECEIVE", 7003, FromIni(L"NetParameterReceive", 0),
     Create<CNetParameterReceiveIOProcess>, true},
    {GUID_IOPROCESS_BROADCAST_SEND, L"IO_PROCESS_BROADCAST", 7005, FromIni(L"BroadcastSend", 0),
     Create<CBroadcastIOProcess>, true},
    {GUID_IOPROCESS_BROADCAST_RECEIVE, L"IO_PROCESS_BROADCASTREV", 7011, ALWAYS, Create<CBroadcastRevIOProcess>, true},
    {GUID_IOPROCESS_GESTURE, L"TOUCH_CONTROL_TOUCH_GESTURE", 7006, FromIni(L"Gesture", 0), Create<CGestureIOProcess>,
     true},
    {GUID_IOPROCESS_VR_HANDLE, L"IO_PROCESS_VRHANLDE", 7007, FromIni(L"VRHandle", 1), Create<CVRHandleIOProcess>, true},
    {GUID_IOPROCESS_OBJECT_JSON_RECEIVE, L"IO_PROCESS_OBJ_JSON_RECEIVE", 7010, ALWAYS, Create<CObjJsonReceive>, true},
    {GUID_IOPROCESS_DEVICE_JSON_RECEIVE, L"IO_PROCESS_DEV_JSON_RECEIVE", 7012, ALWAYS, Create<CDevJsonReceive>, true},
    {GUID_IOPROCESS_STRING_DATA_SEND, L"IO_PROCESS_STRING_SEND", 7013, ALWAYS, Create<CStringDataSendIOProcess>, true},
};

} // namespace

std::span<const NodeTypeRow> NodeTypes() {
    return NODE_TYPES;
}

const NodeTypeRow* FindNodeType(const GUID& guidType) {
    for (const NodeTypeRow& row : NODE_TYPES) {
        if (IsEqualGUID(row.guidType, guidType)) {
            return &row;
        }
    }
    return nullptr;
}
