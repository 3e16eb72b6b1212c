#include "OscComparison.h"

#include <array>
#include <stdexcept>

#include <lo/lo.h>

#include "host/NodeTypeGuid.h"

namespace {

constexpr double LIMIT = 1.3; // set from what was measured (docs/benchmarks.md)
constexpr int KEY_DOWN = 152;

} // namespace

struct COscComparison::SSides {
    explicit SSides(const CBenchHost& benchHost)
        : host(benchHost), clip(MEASURED_CLIP), placed(host, GUID_IOPROCESS_KEYBOARD, clip),
          server(lo_server_new(nullptr, nullptr)) {
        if (server == nullptr) {
            throw std::runtime_error("no server of OSC messages can be made");
        }
        lo_server_add_method(server, "/Keyboard/KeyDown", "sssi", &SSides::OnMessage, &nDispatched);
    }

    ~SSides() { lo_server_free(server); }

    SSides(const SSides&) = delete;
    SSides& operator=(const SSides&) = delete;

    bool FireEvent() const {
        PostGeneralEvent(*placed.m_pNode, placed.m_pNode->m_pOwnerClip, nullptr, KEY_DOWN);
        return host.ReceiveEvents() == 1;
    }

    bool DispatchMessage() {
        nDispatched = 0;
        lo_message message = lo_message_new();
        lo_message_add(message, "sssi", "Clip", "Keyboard 1", "Keyboard", KEY_DOWN);
        std::array<char, 256> bytes;
        size_t nBytes = bytes.size();
        lo_message_serialise(message, "/Keyboard/KeyDown", bytes.data(), &nBytes);
        lo_server_dispatch_data(server, bytes.data(), nBytes);
        lo_message_free(message);
        return nDispatched == 1;
    }

    static int OnMessage(const char* /*path*/, const char* /*types*/, lo_arg** /*arguments*/, int /*count*/,
                         lo_message /*message*/, void* pDispatched) {
        ++*static_cast<int*>(pDispatched);
        return 0;
    }

    const CBenchHost& host;
    VEKClip clip;
    CPlacedNode placed;
    lo_server server;
    int nDispatched = 0;
};

COscComparison::COscComparison(const CBenchHost& host)
    : m_pSides(std::make_unique<SSides>(host)), m_comparison{.strName = "Event/OpenSoundControl",
                                                             .nNodes = 1,
                                                             .fRatioLimit = LIMIT,
                                                             .bMayAllocate = true,
                                                             .measured = [this] { return m_pSides->FireEvent(); },
                                                             .floor = [this] { return m_pSides->DispatchMessage(); }} {}

COscComparison::~COscComparison() = default;
