#include "protocol/Payloads.h"

#include <algorithm>

#include "HostSetup.h"
#include "base/TextUtf8.h"
#include "host/EventRecord.h"
#include "host/NodeTypeGuid.h"
#include "protocol/RecordJson.h"

namespace {

template <typename Data>
class CPayloadOf final : public CPayload {
public:
    explicit CPayloadOf(const Data& data) : m_data(data) {}

    void* Object() override { return &m_data; }

private:
    Data m_data;
};

template <typename Data>
std::unique_ptr<CPayload> Wrap(const Data& data) {
    return std::make_unique<CPayloadOf<Data>>(data);
}

std::unique_ptr<CPayload> MakeKey(const CFields& fields) {
    SKeyEventData key;
    key.m_strText = FromUtf8(fields.Text("text"));
    return Wrap(key);
}

std::unique_ptr<CPayload> MakePointer(const CFields& fields) {
    const float fRelativeX = fields.Float("rx");
    const float fRelativeY = fields.Float("ry");
    const CPoint ptPixel(fields.Int("x"), fields.Int("y"));
    const int nPointer = fields.Int("pointer");
    const int bRelative = fields.Int("relative");
    if (bRelative != 0 && bRelative != 1) {
        Refuse(fields.Path("relative"), "must be 0 or 1");
    }
    return Wrap(SQORMouseData(nPointer, fRelativeX, fRelativeY, ptPixel, bRelative));
}

std::unique_ptr<CPayload> MakeBroadcast(const CFields& fields) {
    SBroadcastItem item;
    item.m_strFlag = FromUtf8(fields.Text("flag"));
    item.m_strClipName = FromUtf8(fields.Text("clip"));
    item.m_strName = FromUtf8(fields.Text("name"));
    item.m_strData = FromUtf8(fields.Text("data"));
    return Wrap(item);
}

/// Event records point at one base of the network's record.
class CRecordPayload final : public CPayload {
public:
    explicit CRecordPayload(const CQORPanelRemoteCtrlData& record) : m_record(record) {}

    void* Object() override { return static_cast<CQORIOAttachedData*>(&m_record); }

private:
    CQORPanelRemoteCtrlData m_record;
};

std::unique_ptr<CPayload> MakeRecord(const CFields& fields) {
    return std::make_unique<CRecordPayload>(ReadRecord(fields));
}

/// As many floats as the member holds.
template <size_t nCount>
void ReadFloats(const CFields& fields, const char* pszName, float (&values)[nCount]) {
    const Json& list = fields.Required(pszName);
    if (!list.is_array() || list.size() != nCount) {
        Refuse(fields.Path(pszName), "must be an array of " + std::to_string(nCount) + " numbers");
    }
    for (size_t i = 0; i < nCount; ++i) {
        values[i] = ReadFloat(list[i], fields.Path(pszName) + "[" + std::to_string(i) + "]");
    }
}

std::unique_ptr<CPayload> MakeVRSample(const CFields& fields) {
    SVRPluginData sample;
    sample.m_nHand = fields.Int("hand");
    sample.m_bTriggerPressed = fields.Int("trigger");
    sample.m_bTouchPadPressed = fields.Int("pad");
    sample.m_fTouchPadX = fields.Float("padx");
    sample.m_fTouchPadY = fields.Float("pady");
    ReadFloats(fields, "pose", sample.m_fPose);
    ReadFloats(fields, "hit", sample.m_fHitPosition);
    sample.m_nPressTime = fields.Unsigned("press");
    sample.m_nReleaseTime = fields.Unsigned("release");
    return Wrap(sample);
}

std::unique_ptr<CPayload> MakeDeviceText(const CFields& fields) {
    SDeviceTextData text;
    text.m_nDeviceId = fields.Int("device");
    text.m_strText = FromUtf8(fields.Text("text"));
    return Wrap(text);
}

std::unique_ptr<CPayload> MakeObjectText(const CFields& fields) {
    SObjectTextData text;
    text.m_strClipName = FromUtf8(fields.Text("clip"));
    text.m_strObjectName = FromUtf8(fields.Text("object"));
    text.m_strText = FromUtf8(fields.Text("text"));
    return Wrap(text);
}

constexpr int ANY_EVENT = -1;

/// One kind of payload and the records that carry it.
struct PayloadKind {
    const char* pszName;
    std::unique_ptr<CPayload> (*pMake)(const CFields& fields);
    EIODevice nDevice;
    int nEvent = ANY_EVENT;
};

constexpr PayloadKind PAYLOAD_KINDS[] = {
    {"key", MakeKey, DEVICE_KEYBOARD},
    {"pointer", MakePointer, DEVICE_POINTER},
    {"record", MakeRecord, DEVICE_NETWORK, EVENT_REMOTE_CONTROL},
    {"record", MakeRecord, DEVICE_NETWORK_CONTROL, EVENT_REMOTE_CONTROL},
    {"broadcast", MakeBroadcast, DEVICE_NETWORK, EVENT_BROADCAST},
    {"vr", MakeVRSample, DEVICE_VR_HANDLE},
    {"device_text", MakeDeviceText, DEVICE_TEXT},
    {"object_text", MakeObjectText, DEVICE_OBJECT_TEXT},
};

constexpr EIODevice READS_NOTHING = static_cast<EIODevice>(-1);

/// The node types known to look at some records only. Any payload may come with the others; types that don't stand here
/// get only what the record carries.
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

/// Whether a row of one of the tables is about records of this device and event.
template <typename Row>
bool IsAbout(const Row& row, int nDevice, int nEvent) {
    return row.nDevice == nDevice && (row.nEvent == ANY_EVENT || row.nEvent == nEvent);
}

const Json* FindPayload(const CFields& request) {
    const Json* pPayload = request.Find("payload");
    return pPayload != nullptr && !pPayload->is_null() ? pPayload : nullptr;
}

const PayloadKind& KindOf(const CFields& payload) {
    const std::string& strKind = payload.Text("is");
    const auto* pKind =
        std::ranges::find_if(PAYLOAD_KINDS, [&](const PayloadKind& kind) { return strKind == kind.pszName; });
    if (pKind == std::end(PAYLOAD_KINDS)) {
        Refuse(payload.Path("is"), "there is no payload kind " + Quoted(strKind));
    }
    return *pKind;
}

} // namespace

std::unique_ptr<CPayload> MakePayload(const CFields& request) {
    const Json* pPayload = FindPayload(request);
    if (pPayload == nullptr) {
        return nullptr;
    }
    const CFields fields(*pPayload, "payload.");
    return KindOf(fields).pMake(fields);
}

OrderedJson PayloadToJson(const SIOEventRecord& record) {
    switch (record.m_nDevice) {
    case DEVICE_TEXT: {
        const auto& text = *static_cast<const SDeviceTextData*>(record.m_pPayload);
        return {{"is", "device_text"}, {"device", text.m_nDeviceId}, {"text", Utf8(text.m_strText)}};
    }
    case DEVICE_OBJECT_TEXT: {
        const auto& text = *static_cast<const SObjectTextData*>(record.m_pPayload);
        return {{"is", "object_text"},
                {"clip", Utf8(text.m_strClipName)},
                {"object", Utf8(text.m_strObjectName)},
                {"text", Utf8(text.m_strText)}};
    }
    default:
        break;
    }
    if (record.m_nEvent == EVENT_BROADCAST) {
        const auto& item = *static_cast<const SBroadcastItem*>(record.m_pPayload);
        return {{"is", "broadcast"},
                {"flag", Utf8(item.m_strFlag)},
                {"clip", Utf8(item.m_strClipName)},
                {"name", Utf8(item.m_strName)},
                {"data", Utf8(item.m_strData)}};
    }
    // The payload is one base of the record.
    const auto* pAttached = static_cast<const CQORIOAttachedData*>(record.m_pPayload);
    OrderedJson payload = {{"is", "record"}};
    payload.update(RecordToJson(static_cast<const CQORPanelRemoteCtrlData&>(*pAttached)));
    return payload;
}

void CheckPayloadFits(const CFields& request, const GUID& guidType, const std::string& strHandle) {
    const Json* pPayload = FindPayload(request);
    if (pPayload == nullptr) {
        return;
    }
    const int nDevice = request.Int("device");
    const int nEvent = request.Int("event");
    if (!MayRead(guidType, nDevice, nEvent)) {
        return;
    }
    const std::string_view name = KindOf(CFields(*pPayload, "payload.")).pszName;
    if (std::ranges::none_of(PAYLOAD_KINDS, [&](const PayloadKind& kind) {
            return name == kind.pszName && IsAbout(kind, nDevice, nEvent);
        })) {
        Refuse("payload.is", "the node " + Quoted(strHandle) + " would read another kind in a record of device " +
                                 std::to_string(nDevice));
    }
}

bool MayRead(const GUID& guidType, int nDevice, int nEvent) {
    const auto isOfType = [&](const NodeRecords& row) { return IsEqualGUID(row.guidType, guidType); };
    return std::ranges::none_of(NODE_RECORDS, isOfType) ||
           std::ranges::any_of(NODE_RECORDS,
                               [&](const NodeRecords& row) { return isOfType(row) && IsAbout(row, nDevice, nEvent); });
}
