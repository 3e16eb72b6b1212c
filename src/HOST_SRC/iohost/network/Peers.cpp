#include "network/Peers.h"

#include <algorithm>
#include <utility>

#include "DeviceList.h"
#include "base/Caught.h"
#include "base/Refusal.h"
#include "host/HostCommon.h"

namespace {

asio::ip::address ReadAddress(const SListenSetup& setup, const char* pszDefault) {
    error_code error;
    const auto address = asio::ip::make_address(setup.address.value_or(pszDefault), error);
    if (error) {
        Refuse("address", Quoted(*setup.address) + " isn't a numeric address");
    }
    return address;
}

/// Run the loop for up to so long, or until the condition is met.
template <typename Condition>
void RunUntil(asio::io_context& context, unsigned nMilliseconds, Condition isMet) {
    const auto tEnd = steady_clock::now() + std::chrono::milliseconds(nMilliseconds);
    context.restart();
    RunLoop([&] {
        while (!isMet() && context.run_one_until(tEnd) > 0) {
        }
    });
}

/// Stop pPeer and start pNew in its place, unless they are the same. Either may be null.
template <typename Peer>
void Replace(std::shared_ptr<Peer>& pPeer, const std::shared_ptr<Peer>& pNew) {
    if (pPeer == pNew) {
        return;
    }
    if (pPeer != nullptr) {
        pPeer->Stop();
    }
    pPeer = pNew;
    if (pPeer != nullptr) {
        pPeer->Start();
    }
}

/// A new listener of that kind on the endpoint, or the one that is there if it has the endpoint already. One that has
/// the port on another address gives it back for that.
template <typename Peer, typename Endpoint>
std::shared_ptr<Peer> OpenOrKeep(const std::shared_ptr<Peer>& pPeer, CPeerLoop& loop, const Endpoint& endpoint,
                                 const char* pszField) {
    const bool bSamePort = pPeer != nullptr && endpoint.port() == pPeer->Port();
    const bool bSame = pPeer != nullptr && (pPeer->Endpoint() == endpoint ||
                                            (bSamePort && pPeer->Endpoint().address() == endpoint.address()));
    if (bSame && pPeer->IsOpen()) {
        return pPeer;
    }
    if (bSamePort) {
        pPeer->CloseSocket();
    }
    const auto pOpened = bSame ? pPeer : std::make_shared<Peer>(loop, endpoint);
    const std::string strProblem = pOpened->Open();
    if (!strProblem.empty()) {
        Refuse(pszField, strProblem);
    }
    return pOpened;
}

/// Let the listener that is there have its port again.
template <typename Peer>
void Reopen(const std::shared_ptr<Peer>& pPeer) {
    if (pPeer != nullptr && !pPeer->IsOpen()) {
        pPeer->Open(); // if that fails, it tries again by itself
    }
}

/// What the configuration says for a port; nodes take the low 16 bits of it.
int ConfiguredNumber() {
    const CString strPath = PXGetPath(PATH_CONFIG) + L"\\PortConfig.ini";
    return static_cast<int>(GetPrivateProfileIntW(L"iFable", L"BroadcastPort", 0, strPath));
}

bool IsPort(int nNumber) {
    return nNumber >= 0 && nNumber <= 0xFFFF;
}

} // namespace

unsigned short ConfiguredBroadcastPort() {
    const int nNumber = ConfiguredNumber();
    return static_cast<unsigned short>(IsPort(nNumber) ? nNumber : 0);
}

std::string ConfiguredPortProblem() {
    const int nNumber = ConfiguredNumber();
    return IsPort(nNumber) ? std::string()
                           : "Config/PortConfig.ini: BroadcastPort " + std::to_string(nNumber) +
                                 " is no port: broadcasts aren't received, and nodes send theirs to port " +
                                 std::to_string(static_cast<unsigned short>(nNumber));
}

// ---- Devices and ports ------------------------------------------------------------------------------------------

void CPeers::SetDevices(std::optional<std::vector<SDeviceSetup>> setups) {
    ChangeDevices(std::nullopt);
    ChangeDevices(std::move(setups));
}

void CPeers::ChangeDevices(std::optional<std::vector<SDeviceSetup>> setups) {
    std::vector<std::shared_ptr<CDeviceLink>> former = std::exchange(m_links, {});
    std::vector<std::shared_ptr<CDeviceLink>> made;
    m_arDevice.RemoveAll();
    m_bDeviceList = setups.has_value();
    for (const SDeviceSetup& setup : setups.value_or(std::vector<SDeviceSetup>())) {
        const auto kept = std::ranges::find_if(former, [&](const auto& pLink) { return pLink->Reaches(setup); });
        if (kept != former.end()) {
            (*kept)->Change(setup);
            m_links.push_back(*kept);
            former.erase(kept);
        } else {
            m_links.push_back(made.emplace_back(std::make_shared<CDeviceLink>(m_loop, setup)));
        }
        m_arDevice.Add(&m_links.back()->Device());
    }
    SetNetPlayCtrlDevices(m_bDeviceList ? &m_arDevice : nullptr);
    for (const auto& pLink : former) {
        pLink->Stop();
    }
    for (const auto& pLink : made) {
        pLink->Start();
    }
    m_loop.OnStateChanged();
}

std::optional<std::vector<SDeviceSetup>> CPeers::Devices() const {
    if (!m_bDeviceList) {
        return std::nullopt;
    }
    std::vector<SDeviceSetup> setups;
    for (const auto& pLink : m_links) {
        setups.push_back(pLink->Setup());
    }
    return setups;
}

void CPeers::Listen(const SListenSetup& setup) {
    std::shared_ptr<CBroadcastReceiver> pBroadcast;
    std::shared_ptr<CControlListener> pControl;
    try {
        if (setup.broadcast) {
            const asio::ip::udp::endpoint endpoint(ReadAddress(setup, "0.0.0.0"), *setup.broadcast);
            pBroadcast = OpenOrKeep(m_pBroadcast, m_loop, endpoint, "broadcast");
        }
        if (setup.control) {
            const asio::ip::tcp::endpoint endpoint(ReadAddress(setup, "127.0.0.1"), *setup.control);
            pControl = OpenOrKeep(m_pControl, m_loop, endpoint, "control");
        }
    } catch (const CRefusal&) {
        pBroadcast.reset();
        Reopen(m_pBroadcast);
        Reopen(m_pControl);
        throw;
    }
    Replace(m_pBroadcast, pBroadcast);
    Replace(m_pControl, pControl);
    m_loop.OnStateChanged();
}

void CPeers::KeepReceivingBroadcasts(unsigned short nPort) {
    const asio::ip::udp::endpoint endpoint(asio::ip::udp::v4(), nPort);
    Replace(m_pBroadcast, std::make_shared<CBroadcastReceiver>(m_loop, endpoint));
}

void CPeers::Close() {
    ChangeDevices(std::nullopt);
    Replace(m_pBroadcast, {});
    Replace(m_pControl, {});
}

const SDeviceSetup* CPeers::FindDevice(int nId) const {
    const CDeviceLink* pLink = FindLink(nId);
    return pLink != nullptr ? &pLink->Setup() : nullptr;
}

CDeviceLink* CPeers::FindLink(int nId) const {
    const auto found = std::ranges::find(m_links, nId, [](const auto& pLink) { return pLink->Setup().nId; });
    return found != m_links.end() ? found->get() : nullptr;
}

CDeviceLink& CPeers::LinkOf(int nId) const {
    CDeviceLink* pLink = FindLink(nId);
    if (pLink == nullptr) {
        Refuse("device", "there is no device " + std::to_string(nId));
    }
    return *pLink;
}

void CPeers::SetListenOnly(bool bOn) {
    m_loop.SetListenOnly(bOn);
    for (const auto& pLink : m_links) {
        pLink->Write();
    }
    m_loop.OnStateChanged();
}

SNetworkState CPeers::State() const {
    SNetworkState state;
    if (m_bDeviceList) {
        state.devices.emplace();
        for (const auto& pLink : m_links) {
            state.devices->push_back(pLink->State());
        }
    }
    if (m_pBroadcast != nullptr) {
        state.broadcast = m_pBroadcast->State();
    }
    if (m_pControl != nullptr) {
        state.control = m_pControl->State();
    }
    state.bListenOnly = m_loop.IsListenOnly();
    return state;
}

// ---- The loop ---------------------------------------------------------------------------------------------------

void CPeers::RunAlways() {
    m_bRunsAlways = true;
    m_loop.Gate().OpenInTurns();
    Context().restart();
}

void CPeers::Poll() {
    if (!m_bRunsAlways) {
        Context().restart();
        RunLoop([this] { Context().poll(); });
    }
}

void CPeers::AwaitFirstAttempts(unsigned nMilliseconds) {
    RunUntil(Context(), nMilliseconds,
             [this] { return std::ranges::all_of(m_links, [](const auto& pLink) { return pLink->WasTried(); }); });
}

void CPeers::Wait(unsigned nMilliseconds) {
    const auto nBefore = m_loop.HandedOverCount();
    m_loop.Gate().Open();
    RunUntil(Context(), nMilliseconds, [&] { return m_loop.HandedOverCount() != nBefore; });
    m_loop.Gate().Close();
}
