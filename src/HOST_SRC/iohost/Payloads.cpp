#include "Payloads.h"

#include <algorithm>

#include "HostSetup.h"
#include "host/NodeTypeGuid.h"

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

/// One kind of payload and the device whose records carry it.
struct PayloadKind {
    const char* pszName;
    EIODevice nDevice;
    std::unique_ptr<CPayload> (*pMake)(const CFields& fields);
};

constexpr PayloadKind PAYLOAD_KINDS[] = {
    {"key", DEVICE_KEYBOARD, MakeKey},
    {"pointer", DEVICE_POINTER, MakePointer},
};

/// The node types known to look at one device only. Any payload may come with the records of the others; types that
/// don't stand here get only what the device carries.
struct NodeDevice {
    GUID guidType;
    EIODevice nDevice;
};

constexpr NodeDevice NODE_DEVICES[] = {
    {GUID_IOPROCESS_KEYBOARD, DEVICE_KEYBOARD},
    {GUID_IOPROCESS_MOUSE, DEVICE_POINTER},
};

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

void CheckPayloadFits(const CFields& request, const GUID& guidType, const std::string& strHandle) {
    const Json* pPayload = FindPayload(request);
    if (pPayload == nullptr) {
        return;
    }
    const int nDevice = request.Int("device");
    const auto* pNodeDevice =
        std::ranges::find_if(NODE_DEVICES, [&](const NodeDevice& row) { return IsEqualGUID(row.guidType, guidType); });
    if (pNodeDevice != std::end(NODE_DEVICES) && pNodeDevice->nDevice != nDevice) {
        return;
    }
    if (KindOf(CFields(*pPayload, "payload.")).nDevice != nDevice) {
        Refuse("payload.is", "the node " + Quoted(strHandle) + " would read another kind in a record of device " +
                                 std::to_string(nDevice));
    }
}
