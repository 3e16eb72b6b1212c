#include <array>
#include <memory>
#include <stdexcept>

#include <lo/lo.h>

#include "Comparison.h"
#include "host/NodeTypeGuid.h"

namespace {

// Set from what was measured (docs/benchmarks.md).
constexpr double EVENT_LIMIT = 1.2;
constexpr double BARE_LIMIT = 0.8;
constexpr int OUTPUT_KEY_DOWN = 152;
constexpr int KEY_DOWN = 2002;

class CSides {
public:
    explicit CSides(CBenchHost& host)
        : m_host(host), m_clip(MEASURED_CLIP), m_placed(host, GUID_IOPROCESS_KEYBOARD, m_clip),
          m_server(lo_server_new(nullptr, nullptr)) {
        if (m_server == nullptr) {
            throw std::runtime_error("no server of OSC messages can be made");
        }
        lo_server_add_method(m_server, "/Keyboard/KeyDown", "sssi", &CSides::OnMessage, &m_nDispatched);
        m_placed.m_pNode->ProcessNode(&m_placed.m_graphNode);
        m_host.TakeLogLines(false);
    }

    ~CSides() {
        m_host.TakeLogLines(true);
        lo_server_free(m_server);
    }

    CSides(const CSides&) = delete;
    CSides& operator=(const CSides&) = delete;

    bool FireEvent() const {
        m_placed.m_pNode->DevIOEventOccurred(&m_record);
        return m_host.ReceiveEvents() == 1;
    }

    bool FireBareEvent() const {
        PostGeneralEvent(*m_placed.m_pNode, OUTPUT_KEY_DOWN);
        return m_host.ReceiveEvents() == 1;
    }

    bool DispatchMessage() {
        m_nDispatched = 0;
        lo_message message = lo_message_new();
        lo_message_add(message, "sssi", "Clip", "Keyboard 1", "Keyboard", OUTPUT_KEY_DOWN);
        std::array<char, 256> bytes;
        size_t nBytes = bytes.size();
        lo_message_serialise(message, "/Keyboard/KeyDown", bytes.data(), &nBytes);
        lo_server_dispatch_data(m_server, bytes.data(), nBytes);
        lo_message_free(message);
        return m_nDispatched == 1;
    }

private:
    static int OnMessage(const char* /*path*/, const char* /*types*/, lo_arg** /*arguments*/, int /*count*/,
                         lo_message /*message*/, void* pDispatched) {
        ++*static_cast<int*>(pDispatched);
        return 0;
    }

    CBenchHost& m_host;
    VEKClip m_clip;
    CPlacedNode m_placed;
    SKeyEventData m_key;
    const SIOEventRecord m_record{DEVICE_KEYBOARD, KEY_DOWN, &m_key};
    lo_server m_server;
    int m_nDispatched = 0;
};

} // namespace

std::vector<Comparison> MakeOscComparison(CBenchHost& host) {
    const auto pSides = std::make_shared<CSides>(host);
    const auto floor = [pSides] { return pSides->DispatchMessage(); };
    return {{.strName = "Event/OpenSoundControl",
             .nNodes = 1,
             .fRatioLimit = EVENT_LIMIT,
             .bMayAllocate = true,
             .measured = [pSides] { return pSides->FireEvent(); },
             .floor = floor,
             .fOwnLookUps = 4}, // display texts
            {.strName = "Event/Bare",
             .nNodes = 1,
             .fRatioLimit = BARE_LIMIT,
             .bMayAllocate = true,
             .measured = [pSides] { return pSides->FireBareEvent(); },
             .floor = floor}};
}
