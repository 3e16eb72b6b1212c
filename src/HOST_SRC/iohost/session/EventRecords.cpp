#include "session/EventRecords.h"

#include <algorithm>

#include "host/NodeTypeGuid.h"

namespace {

constexpr int ANY_EVENT = -1;
constexpr EIODevice READS_NOTHING = static_cast<EIODevice>(-1);

/// The node types that look at some records only; others get only what a record of the device and event carries.
struct NodeRecords {
    GUID guidType;
    EIODevice nDevice;
    int nEvent = ANY_EVENT;
};

constexpr NodeRecords NODE_RECORDS[] = {
    {GUID_IOPROCESS_KEYBOARD, DEVICE_KEYBOARD},
    {GUID_IOPROCESS_KEY_CHECK, READS_NOTHING},
    {GUID_IOPROCESS_TEXT_FIELD, READS_NOTHING},
    {GUID_IOPROCESS_MOUSE, DEVICE_POINTER},
    {GUID_IOPROCESS_NET_PARAMETER_SEND, READS_NOTHING},
    {GUID_IOPROCESS_NET_PARAMETER_RECEIVE, DEVICE_NETWORK, EVENT_REMOTE_CONTROL},
    {GUID_IOPROCESS_NET_PARAMETER_RECEIVE, DEVICE_NETWORK_CONTROL, EVENT_REMOTE_CONTROL},
    {GUID_IOPROCESS_BROADCAST_SEND, READS_NOTHING},
    {GUID_IOPROCESS_BROADCAST_RECEIVE, DEVICE_NETWORK, EVENT_BROADCAST},
    {GUID_IOPROCESS_GESTURE, DEVICE_POINTER},
    {GUID_IOPROCESS_VR_HANDLE, DEVICE_VR_HANDLE},
    {GUID_IOPROCESS_OBJECT_JSON_RECEIVE, DEVICE_OBJECT_TEXT},
    {GUID_IOPROCESS_DEVICE_JSON_RECEIVE, DEVICE_TEXT},
    {GUID_IOPROCESS_STRING_DATA_SEND, READS_NOTHING},
};

/// Whether a record of this device and event carries such a payload.
bool Carries(int nDevice, int nEvent, const Payload& payload) {
    switch (nDevice) {
    case DEVICE_KEYBOARD:
        return std::holds_alternative<SKeyEventData>(payload);
    case DEVICE_POINTER:
        return std::holds_alternative<SQORMouseData>(payload);
    case DEVICE_NETWORK:
        return (nEvent == EVENT_REMOTE_CONTROL && std::holds_alternative<CQORPanelRemoteCtrlData>(payload)) ||
               (nEvent == EVENT_BROADCAST && std::holds_alternative<SBroadcastItem>(payload));
    case DEVICE_NETWORK_CONTROL:
        return nEvent == EVENT_REMOTE_CONTROL && std::holds_alternative<CQORPanelRemoteCtrlData>(payload);
    case DEVICE_VR_HANDLE:
        return std::holds_alternative<SVRPluginData>(payload);
    case DEVICE_TEXT:
        return std::holds_alternative<SDeviceTextData>(payload);
    case DEVICE_OBJECT_TEXT:
        return std::holds_alternative<SObjectTextData>(payload);
    default:
        return false;
    }
}

} // namespace

Payload PayloadOf(const SIOEventRecord& record) {
    if (record.m_nDevice == DEVICE_TEXT) {
        return *static_cast<const SDeviceTextData*>(record.m_pPayload);
    }
    if (record.m_nEvent == EVENT_BROADCAST) {
        return *static_cast<const SBroadcastItem*>(record.m_pPayload);
    }
    // The payload is one base of the record.
    return static_cast<const CQORPanelRemoteCtrlData&>(*static_cast<const CQORIOAttachedData*>(record.m_pPayload));
}

void* PointerTo(Payload& payload) {
    return std::visit(
        []<typename Kind>(Kind& object) -> void* {
            if constexpr (std::is_same_v<Kind, std::monostate>) {
                return nullptr;
            } else if constexpr (std::is_same_v<Kind, CQORPanelRemoteCtrlData>) {
                return static_cast<CQORIOAttachedData*>(&object); // records point at this base of it
            } else {
                return &object;
            }
        },
        payload);
}

bool DeviceFitsPayload(const SEventCommand& event) {
    return std::holds_alternative<std::monostate>(event.payload) || Carries(event.nDevice, event.nEvent, event.payload);
}

bool MayRead(const GUID& guidType, int nDevice, int nEvent) {
    const auto isOfType = [&](const NodeRecords& row) { return IsEqualGUID(row.guidType, guidType); };
    return std::ranges::none_of(NODE_RECORDS, isOfType) || std::ranges::any_of(NODE_RECORDS, [&](const auto& row) {
               return isOfType(row) && row.nDevice == nDevice && (row.nEvent == ANY_EVENT || row.nEvent == nEvent);
           });
}
