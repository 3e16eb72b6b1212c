#include "network/Peers.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "DeviceList.h"
#include "base/Caught.h"
#include "base/HostLine.h"
#include "engine/Host.h"
#include "host/EventRecord.h"
#include "host/HostCommon.h"
#include "host/RemoteControlRecord.h"
#include "protocol/Payloads.h"

namespace asio = boost::asio;
using boost::system::error_code;
using std::chrono::steady_clock;

namespace {

constexpr const char* PEER_NAMES[] = {"broadcast", "control", "device"};

/// A numeric address and a port; a port alone is refused as well.
asio::ip::tcp::endpoint ReadEndpoint(const std::string& strText, const std::string& strField) {
    const size_t nColon = strText.rfind(':');
    unsigned short nPort = 0;
    error_code error = asio::error::invalid_argument;
    asio::ip::address address;
    if (nColon != std::string::npos) {
        std::string strAddress = strText.substr(0, nColon);
        if (strAddress.size() > 2 && strAddress.front() == '[' && strAddress.back() == ']') {
            strAddress = strAddress.substr(1, strAddress.size() - 2);
        }
        address = asio::ip::make_address(strAddress, error);
        const char* pEnd = strText.data() + strText.size();
        const auto [pRead, nError] = std::from_chars(strText.data() + nColon + 1, pEnd, nPort);
        if (nError != std::errc() || pRead != pEnd || nPort == 0) {
            error = asio::error::invalid_argument;
        }
    }
    if (error) {
        Refuse(strField, Quoted(strText) + " isn't a numeric address and a port, as in 127.0.0.1:9000");
    }
    return {address, nPort};
}

EDeviceParser ReadParser(const std::string& strText, const std::string& strField) {
    if (strText == "framed") {
        return EDeviceParser::Framed;
    }
    if (strText == "direct") {
        return EDeviceParser::Direct;
    }
    if (strText == "json") {
        return EDeviceParser::JsonLines;
    }
    if (strText == "none") {
        return EDeviceParser::None;
    }
    Refuse(strField, Quoted(strText) + " is none of framed, direct, json, none");
}

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

/// Stop the one and start the other; either may be null, and both the same.
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
std::shared_ptr<Peer> OpenOrKeep(const std::shared_ptr<Peer>& pPeer, asio::io_context& context,
                                 const Endpoint& endpoint, IPeerHost& host, const char* pszField) {
    const bool bSamePort = pPeer != nullptr && endpoint.port() == pPeer->Port();
    const bool bSame = pPeer != nullptr && (pPeer->Endpoint() == endpoint ||
                                            (bSamePort && pPeer->Endpoint().address() == endpoint.address()));
    if (bSame && pPeer->IsOpen()) {
        return pPeer;
    }
    if (bSamePort) {
        pPeer->CloseSocket();
    }
    const auto pOpened = bSame ? pPeer : std::make_shared<Peer>(context, endpoint, host);
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

} // namespace

unsigned short ConfiguredBroadcastPort() {
    const CString strPath = PXGetPath(PATH_CONFIG) + L"\\PortConfig.ini";
    return static_cast<unsigned short>(GetPrivateProfileIntW(L"iFable", L"BroadcastPort", 0, strPath));
}

// ---- Devices and ports ------------------------------------------------------------------------------------------

std::optional<std::vector<SDeviceSetup>> CPeers::ReadDevices(const Json& list, const std::string& strPath) {
    if (list.is_null()) {
        return std::nullopt;
    }
    if (!list.is_array()) {
        Refuse(strPath, "must be an array or null");
    }
    std::vector<SDeviceSetup> setups;
    for (size_t i = 0; i < list.size(); ++i) {
        const CFields fields(list[i], strPath + "[" + std::to_string(i) + "].");
        SDeviceSetup setup;
        setup.nId = fields.Int("id");
        setup.strName = fields.Text("name");
        setup.nParser = ReadParser(fields.Text("parser"), fields.Path("parser"));
        const Json* pAddress = fields.Find("address");
        if (pAddress != nullptr && !pAddress->is_null()) {
            setup.address = ReadEndpoint(ReadText(*pAddress, fields.Path("address")), fields.Path("address"));
        }
        setups.push_back(std::move(setup));
    }
    return setups;
}

void CPeers::SetDevices(std::optional<std::vector<SDeviceSetup>> setups) {
    StopDevices();
    m_bDeviceList = setups.has_value();
    if (setups) {
        IPeerHost& host = *this;
        for (SDeviceSetup& setup : *setups) {
            const auto pLink = std::make_shared<CDeviceLink>(m_context, std::move(setup), host);
            m_arDevice.Add(&pLink->Device());
            m_links.push_back(pLink);
            pLink->Start();
        }
        SetNetPlayCtrlDevices(&m_arDevice);
    }
    OnStateChanged();
}

OrderedJson CPeers::DeviceList() const {
    if (!m_bDeviceList) {
        return nullptr;
    }
    OrderedJson list = OrderedJson::array();
    for (const auto& pLink : m_links) {
        list.push_back(pLink->SetupJson());
    }
    return list;
}

void CPeers::Listen(const SListenSetup& setup) {
    std::shared_ptr<CBroadcastReceiver> pBroadcast;
    std::shared_ptr<CControlListener> pControl;
    try {
        if (setup.broadcast) {
            const asio::ip::udp::endpoint endpoint(ReadAddress(setup, "0.0.0.0"), *setup.broadcast);
            pBroadcast = OpenOrKeep(m_pBroadcast, m_context, endpoint, *this, "broadcast");
        }
        if (setup.control) {
            const asio::ip::tcp::endpoint endpoint(ReadAddress(setup, "127.0.0.1"), *setup.control);
            pControl = OpenOrKeep(m_pControl, m_context, endpoint, *this, "control");
        }
    } catch (const CRefusal&) {
        pBroadcast.reset();
        pControl.reset();
        Reopen(m_pBroadcast);
        Reopen(m_pControl);
        throw;
    }
    Replace(m_pBroadcast, pBroadcast);
    Replace(m_pControl, pControl);
    OnStateChanged();
}

void CPeers::KeepReceivingBroadcasts(unsigned short nPort) {
    const asio::ip::udp::endpoint endpoint(asio::ip::udp::v4(), nPort);
    IPeerHost& host = *this;
    Replace(m_pBroadcast, std::make_shared<CBroadcastReceiver>(m_context, endpoint, host));
}

void CPeers::Close() {
    StopDevices();
    Replace(m_pBroadcast, {});
    Replace(m_pControl, {});
}

void CPeers::StopDevices() {
    SetNetPlayCtrlDevices(nullptr);
    m_bDeviceList = false;
    m_arDevice.RemoveAll();
    for (const auto& pLink : std::exchange(m_links, {})) {
        pLink->Stop();
    }
}

void CPeers::SetListenOnly(bool bOn) {
    m_bListenOnly = bOn;
    for (const auto& pLink : m_links) {
        pLink->Write();
    }
    OnStateChanged();
}

OrderedJson CPeers::State() const {
    OrderedJson devices;
    if (m_bDeviceList) {
        devices = OrderedJson::array();
        for (const auto& pLink : m_links) {
            devices.push_back(pLink->State());
        }
    }
    return {{"devices", std::move(devices)},
            {"broadcast", m_pBroadcast != nullptr ? m_pBroadcast->State() : OrderedJson()},
            {"control", m_pControl != nullptr ? m_pControl->State() : OrderedJson()},
            {"listen_only", m_bListenOnly}};
}

// ---- The loop ---------------------------------------------------------------------------------------------------

void CPeers::RunAlways() {
    m_bRunsAlways = true;
    m_gate.OpenInTurns();
    m_context.restart();
}

void CPeers::Poll() {
    if (!m_bRunsAlways) {
        m_context.restart();
        RunLoop([this] { m_context.poll(); });
    }
}

void CPeers::AwaitFirstAttempts(unsigned nMilliseconds) {
    RunUntil(m_context, nMilliseconds,
             [this] { return std::ranges::all_of(m_links, [](const auto& pLink) { return pLink->WasTried(); }); });
}

OrderedJson CPeers::Wait(unsigned nMilliseconds) {
    m_dispatched = OrderedJson::array();
    m_gate.Open();
    RunUntil(m_context, nMilliseconds, [this] { return !m_dispatched.empty(); });
    m_gate.Close();
    return std::exchange(m_dispatched, OrderedJson());
}

// ---- Items --------------------------------------------------------------------------------------------------------

bool CPeers::OnRecord(EPeer nFrom, EIODevice nDevice, CQORPanelRemoteCtrlData& record) {
    return Dispatch(nFrom, {nDevice, EVENT_REMOTE_CONTROL, static_cast<CQORIOAttachedData*>(&record)});
}

bool CPeers::OnBroadcast(SBroadcastItem& item) {
    return Dispatch(EPeer::Broadcast, {DEVICE_NETWORK, EVENT_BROADCAST, &item});
}

bool CPeers::OnDeviceText(int nDeviceId, const CString& strText) {
    constexpr int EVENT_TEXT = 0; // there is only one kind
    SDeviceTextData text;
    text.m_nDeviceId = nDeviceId;
    text.m_strText = strText;
    return Dispatch(EPeer::Device, {DEVICE_TEXT, EVENT_TEXT, &text});
}

void CPeers::OnSent(OrderedJson entry) {
    m_host.Happened().OnSent(std::move(entry));
}

/// Replies and recordings have all of it; what a running host shows is for people.
size_t CPeers::MostShownBytes() const {
    constexpr size_t MOST_SHOWN = 65536;
    return m_bRunsAlways && m_pItemObserver == nullptr ? MOST_SHOWN : SIZE_MAX;
}

/// Hand an item to all nodes; whether one of them took it. An item that fails is logged, and the next ones come.
bool CPeers::Dispatch(EPeer nFrom, const SIOEventRecord& record) {
    bool bTaken = false;
    DoGuarded(m_faultLine, "an item of the network failed", [&] { bTaken = HandOver(nFrom, record); });
    return bTaken;
}

bool CPeers::HandOver(EPeer nFrom, const SIOEventRecord& record) {
    if (m_pItemObserver != nullptr) {
        m_pItemObserver->OnItemComes();
    }
    const bool bTold = m_dispatched.is_array() || m_pItemObserver != nullptr;
    bool bTaken = false;
    OrderedJson results = OrderedJson::object();
    for (auto& [nOrder, node] : m_host.Scene().Nodes()) {
        OrderedJson result;
        try {
            const int nResult = m_host.Deliver(node, &record);
            bTaken = bTaken || (nResult != 0 && MayRead(node.guidType, record.m_nDevice, record.m_nEvent));
            result = nResult;
        } catch (...) {
            m_faultLine.Write(CaughtText());
        }
        if (bTold) {
            results[node.strHandle] = std::move(result);
        }
    }
    if (!bTold) {
        return bTaken;
    }
    OrderedJson item = {{"from", PEER_NAMES[static_cast<size_t>(nFrom)]},
                        {"device", record.m_nDevice},
                        {"event", record.m_nEvent},
                        {"results", std::move(results)}};
    if (m_dispatched.is_array()) {
        m_dispatched.push_back(item);
    }
    if (m_pItemObserver != nullptr) {
        item["payload"] = PayloadToJson(record);
        m_pItemObserver->OnItemHandled(item);
    }
    return bTaken;
}
