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

constexpr NodeTypeRow NODE_TYPES[] = {
    {GUID_IOPROCESS_KEYBOARD, L"IO_PROCESS_KEYBOARD", 7000, 1, nullptr, Create<CKeyboardIOProcess>},
    // Destroying a key check node only unlinks it.
    {GUID_IOPROCESS_KEY_CHECK, L"IO_PROCESS_KEY_CHECK", 7009, 1, nullptr, Create<CKeyCheckProcess>, false},
    {GUID_IOPROCESS_TEXT_FIELD, L"IO_PROCESS_TEXTFIELDINPUT", 7001, 1, nullptr, Create<CTextFieldInputProcess>},
    {GUID_IOPROCESS_MOUSE, L"IO_PROCESS_MOUSE", 7002, 1, nullptr, Create<CMouseIOProcess>},
    {GUID_IOPROCESS_NET_PARAMETER_SEND, L"IO_PROCESS_NETSEND", 7004, 0, L"NetParameterSend",
     Create<CNetParameterSendIOProcess>},
    {GUID_IOPROCESS_NET_PARAMETER_RECEIVE, L"IO_PROCESS_NETRECEIVE", 7003, 0, L"NetParameterReceive",
     Create<CNetParameterReceiveIOProcess>},
    {GUID_IOPROCESS_BROADCAST_SEND, L"IO_PROCESS_BROADCAST", 7005, 0, L"BroadcastSend", Create<CBroadcastIOProcess>},
    {GUID_IOPROCESS_BROADCAST_RECEIVE, L"IO_PROCESS_BROADCASTREV", 7011, 1, nullptr, Create<CBroadcastRevIOProcess>},
    {GUID_IOPROCESS_GESTURE, L"TOUCH_CONTROL_TOUCH_GESTURE", 7006, 0, L"Gesture", Create<CGestureIOProcess>},
    {GUID_IOPROCESS_VR_HANDLE, L"IO_PROCESS_VRHANLDE", 7007, 1, L"VRHandle", Create<CVRHandleIOProcess>},
    {GUID_IOPROCESS_OBJECT_JSON_RECEIVE, L"IO_PROCESS_OBJ_JSON_RECEIVE", 7010, 1, nullptr, Create<CObjJsonReceive>},
    {GUID_IOPROCESS_DEVICE_JSON_RECEIVE, L"IO_PROCESS_DEV_JSON_RECEIVE", 7012, 1, nullptr, Create<CDevJsonReceive>},
    {GUID_IOPROCESS_STRING_DATA_SEND, L"IO_PROCESS_STRING_SEND", 7013, 1, nullptr, Create<CStringDataSendIOProcess>},
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
