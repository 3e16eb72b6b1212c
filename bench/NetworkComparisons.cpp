#include <chrono>
#include <cstdio>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include <arpa/inet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <benchmark/benchmark.h>
#include <pugixml.hpp>

#include "BroadcastDatagram.h"
#include "Comparison.h"
#include "DeviceList.h"
#include "HostSetup.h"
#include "host/EventRecord.h"
#include "host/NodeTypeGuid.h"
#include "network/DeviceLink.h"
#include "network/Peers.h"

namespace {

// Set close above what was measured (docs/benchmarks.md).
constexpr double BROADCAST_SEND_LIMIT = 1.7;    // of a call of the system that takes less than a microsecond
constexpr double RECORD_SEND_LIMIT = 2.4;       // likewise
constexpr double BROADCAST_RECEIVE_LIMIT = 5.2; // beside the parse, the element is checked and four texts are made

void Require(bool bHolds, const char* pszProblem) {
    if (!bHolds) {
        throw std::runtime_error(pszProblem);
    }
}

/// A socket that is closed at the end.
class CBenchSocket {
public:
    explicit CBenchSocket(int hSocket) : m_hSocket(hSocket) { Require(hSocket >= 0, "no socket"); }
    ~CBenchSocket() { close(m_hSocket); }

    CBenchSocket(const CBenchSocket&) = delete;
    CBenchSocket& operator=(const CBenchSocket&) = delete;

    operator int() const { return m_hSocket; }

private:
    const int m_hSocket;
};

sockaddr_in Address(in_addr_t nAddress, unsigned short nPort) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(nAddress);
    address.sin_port = htons(nPort);
    return address;
}

const sockaddr* Generic(const sockaddr_in& address) {
    return reinterpret_cast<const sockaddr*>(&address);
}

void Bind(int hSocket, const sockaddr_in& address) {
    Require(bind(hSocket, Generic(address), sizeof(address)) == 0, "the port can't be had");
}

/// How long to wait for what should be there.
void SetPatience(int hSocket) {
    const timeval patience = {5, 0};
    setsockopt(hSocket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof(patience));
}

unsigned short PortOf(int hSocket) {
    sockaddr_in address = {};
    socklen_t nSize = sizeof(address);
    getsockname(hSocket, reinterpret_cast<sockaddr*>(&address), &nSize);
    return ntohs(address.sin_port);
}

/// Give the node its texts, and its graph node inputs as a host does: copies of the node's own. The event input fires
/// in every evaluation.
void SetUp(CPlacedNode& placed, std::initializer_list<std::pair<unsigned, const wchar_t*>> texts, unsigned nEvent) {
    for (const auto& [nId, pszText] : texts) {
        FindParam(placed.m_pNode->m_lstParamGroup, MakeParamGuid(nId))->m_strValue = pszText;
    }
    VEKParamGroupList& lstInput = placed.m_graphNode.m_lstInputGroup;
    lstInput.AddTail(new VEKParamGroup);
    const CList<VEKParam*>& lstParam = placed.m_pNode->m_lstParamGroup.GetHead()->m_lstParam;
    for (POSITION pos = lstParam.GetHeadPosition(); pos != nullptr;) {
        lstInput.GetHead()->m_lstParam.AddTail(lstParam.GetNext(pos)->Clone());
    }
    FindParam(lstInput, MakeParamGuid(nEvent))->m_nValue = 1;
}

/// Whether broadcasts reach nobody but this machine: there is no other network than the loopback.
bool IsAlone() {
    struct if_nameindex* pInterfaces = if_nameindex();
    bool bAlone = pInterfaces != nullptr;
    for (const auto* pInterface = pInterfaces; bAlone && pInterface->if_name != nullptr; ++pInterface) {
        bAlone = std::string_view(pInterface->if_name) == "lo";
    }
    if_freenameindex(pInterfaces);
    return bAlone;
}

/// Nothing comes in.
class CQuietReceiver final : public INetworkReceiver {
public:
    bool OnItem(EPeer, const SIOEventRecord&) override { return false; }
    std::optional<std::string> OnSent(const SSentItem&) override { return {}; }
};

/// The far end of a connection: throws away what it's sent.
class CDrain {
public:
    CDrain() : m_listener(socket(AF_INET, SOCK_STREAM, 0)) {
        Bind(m_listener, Address(INADDR_LOOPBACK, 0));
        Require(listen(m_listener, 1) == 0, "the port can't be listened on");
    }
    ~CDrain() {
        if (m_hConnection >= 0) {
            close(m_hConnection);
        }
    }

    CDrain(const CDrain&) = delete;
    CDrain& operator=(const CDrain&) = delete;

    unsigned short Port() const { return PortOf(m_listener); }
    void Accept() {
        m_hConnection = accept(m_listener, nullptr, nullptr);
        Require(m_hConnection >= 0, "nobody connected");
        SetPatience(m_hConnection);
    }

    std::string Read(size_t nBytes) const {
        std::string bytes(nBytes, '\0');
        Require(recv(m_hConnection, bytes.data(), nBytes, MSG_WAITALL) == static_cast<ssize_t>(nBytes), "bytes lost");
        return bytes;
    }

    /// So many bytes were sent. They are taken away when many have gathered; false when they didn't all come.
    bool Sent(size_t nBytes) {
        m_nUnread += nBytes;
        while (m_nUnread >= MOST_UNREAD) {
            const ssize_t nRead = recv(m_hConnection, nullptr, m_nUnread, MSG_TRUNC);
            if (nRead <= 0) {
                return false;
            }
            m_nUnread -= static_cast<size_t>(nRead);
        }
        return true;
    }

private:
    static constexpr size_t MOST_UNREAD = 32768;

    const CBenchSocket m_listener;
    int m_hConnection = -1;
    size_t m_nUnread = 0;
};

// ---- A broadcast --------------------------------------------------------------------------------------------------

/// The broadcast send node against a bare sendto of the same bytes.
class CBroadcastSend {
public:
    explicit CBroadcastSend(const CBenchHost& host)
        : m_clip(L"Clip"), m_node(host, GUID_IOPROCESS_BROADCAST_SEND, m_clip) {
        SetUp(m_node, {{602, L"1"}, {603, L"Intro"}, {604, L"score"}, {605, L"12|7"}}, 606);
        const int bBroadcast = 1;
        setsockopt(m_socket, SOL_SOCKET, SO_BROADCAST, &bBroadcast, sizeof(bBroadcast));

        const CBenchSocket receiver(socket(AF_INET, SOCK_DGRAM, 0));
        Bind(receiver, Address(INADDR_ANY, ConfiguredBroadcastPort()));
        SetPatience(receiver);
        Require(Measured(), "the broadcast send node does nothing");
        m_bytes = Receive(receiver);
        Require(Floor() && Receive(receiver) == m_bytes && m_bytes.starts_with("[.{<Broadcast Flag=\"1\""),
                "the broadcast's floor sends something else than the node");
    }

    bool Measured() const { return m_node.m_pNode->ProcessNode(&m_node.m_graphNode) == 1; }

    bool Floor() const {
        return sendto(m_socket, m_bytes.data(), m_bytes.size(), 0, Generic(m_address), sizeof(m_address)) ==
               static_cast<ssize_t>(m_bytes.size());
    }

private:
    static std::string Receive(int hSocket) {
        char bytes[65536];
        const ssize_t nBytes = recv(hSocket, bytes, sizeof(bytes), 0);
        Require(nBytes > 0, "the broadcast doesn't come back");
        return {bytes, static_cast<size_t>(nBytes)};
    }

    VEKClip m_clip;
    mutable CPlacedNode m_node;
    const CBenchSocket m_socket{socket(AF_INET, SOCK_DGRAM, 0)};
    const sockaddr_in m_address = Address(INADDR_BROADCAST, ConfiguredBroadcastPort());
    std::string m_bytes;
};

// ---- A record -----------------------------------------------------------------------------------------------------

/// The net parameter send node, with a device connected to the host, against writing the same bytes to a connection.
class CRecordSend {
public:
    explicit CRecordSend(const CBenchHost& host)
        : m_clip(L"Clip"), m_node(host, GUID_IOPROCESS_NET_PARAMETER_SEND, m_clip) {
        SetUp(m_node, {{402, L"3"}, {404, L"Intro"}, {405, L"group"}, {406, L"key"}, {408, L"value"}, {409, L"help"}},
              410);
        namespace asio = boost::asio;
        const SDeviceSetup setup = {
            .nId = 3,
            .strName = "Wall",
            .nParser = EDeviceParser::Framed,
            .address = asio::ip::tcp::endpoint(asio::ip::address_v4::loopback(), m_measuredDrain.Port())};
        m_pLink = std::make_shared<CDeviceLink>(m_loop, setup);
        m_pLink->Start();
        m_loop.Context().run_for(std::chrono::milliseconds(100)); // the listening system answers for the drain
        m_measuredDrain.Accept();
        m_arDevice.Add(&m_pLink->Device());
        SetNetPlayCtrlDevices(&m_arDevice);

        const sockaddr_in address = Address(INADDR_LOOPBACK, m_floorDrain.Port());
        Require(connect(m_socket, Generic(address), sizeof(address)) == 0, "the floor's connection");
        const int bNoDelay = 1; // as the host's connections are
        setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &bNoDelay, sizeof(bNoDelay));
        m_floorDrain.Accept();

        m_node.m_pNode->ProcessNode(&m_node.m_graphNode);
        m_frame = m_measuredDrain.Read(16); // the header names the size of what follows
        const auto nSize =
            static_cast<size_t>(static_cast<unsigned char>(m_frame[10]) << 8 | static_cast<unsigned char>(m_frame[11]));
        m_frame += m_measuredDrain.Read(nSize);
        Require(m_frame.find("KeyValue=\"value\"") != std::string::npos, "not the record");
    }
    ~CRecordSend() {
        SetNetPlayCtrlDevices(nullptr);
        m_pLink->Stop();
        m_loop.Context().restart();
        m_loop.Context().poll();
    }

    CRecordSend(const CRecordSend&) = delete;
    CRecordSend& operator=(const CRecordSend&) = delete;

    /// The record is written within the evaluation: the drain has all of it without another turn of the loop.
    bool Measured() {
        m_node.m_pNode->ProcessNode(&m_node.m_graphNode);
        return m_measuredDrain.Sent(m_frame.size());
    }

    bool Floor() {
        return send(m_socket, m_frame.data(), m_frame.size(), 0) == static_cast<ssize_t>(m_frame.size()) &&
               m_floorDrain.Sent(m_frame.size());
    }

private:
    VEKClip m_clip;
    CPlacedNode m_node;
    CQuietReceiver m_receiver;
    CPeerLoop m_loop{m_receiver};
    CDrain m_measuredDrain;
    CDrain m_floorDrain;
    std::shared_ptr<CDeviceLink> m_pLink;
    NetPlayCtrlDevArray m_arDevice;
    const CBenchSocket m_socket{socket(AF_INET, SOCK_STREAM, 0)};
    std::string m_frame;
};

// ---- A received broadcast -----------------------------------------------------------------------------------------

/// Reading a datagram and handing it to a broadcast receive node, against parsing the same XML.
class CBroadcastReceive {
public:
    explicit CBroadcastReceive(const CBenchHost& host)
        : m_clip(L"Clip"), m_node(host, GUID_IOPROCESS_BROADCAST_RECEIVE, m_clip) {
        SetUp(m_node, {{1302, L"1"}}, 1302);
        m_node.m_pNode->ProcessNode(&m_node.m_graphNode);
        Require(Measured() && Floor(), "the broadcast isn't read");
        const VEKParam* pData = FindParam(m_node.m_graphNode.m_lstOutputGroup, MakeParamGuid(1353));
        Require(pData != nullptr && pData->m_strValue == L"12|7" && m_datagram.find(m_xml) != std::string_view::npos,
                "the floor parses something else than the broadcast");
    }

    bool Measured() {
        SBroadcastItem item;
        EBroadcastRefusal nRefusal{};
        const auto* pBytes = reinterpret_cast<const unsigned char*>(m_datagram.data());
        if (!ReadBroadcast({pBytes, m_datagram.size()}, item, nRefusal)) {
            return false;
        }
        const SIOEventRecord record{DEVICE_NETWORK, EVENT_BROADCAST, &item};
        return m_node.m_pNode->DevIOEventOccurred(&record) == 1;
    }

    bool Floor() const {
        pugi::xml_document document;
        const bool bParsed = document.load_buffer(m_xml.data(), m_xml.size(), pugi::parse_default, pugi::encoding_utf8);
        benchmark::DoNotOptimize(document.first_child());
        return bParsed;
    }

private:
    static constexpr std::string_view m_xml =
        "<Broadcast Flag=\"1\" ClipName=\"Intro\" Name=\"score\" Data=\"12|7\"/>\r\n";
    const std::string m_datagram = "[.{" + std::string(m_xml) + "}.]" + '\0';
    VEKClip m_clip;
    CPlacedNode m_node;
};

} // namespace

std::vector<Comparison> MakeNetworkComparisons(const CBenchHost& host) {
    std::vector<Comparison> comparisons;
    const auto add = [&](const char* pszName, double fRatioLimit, double fOwnAllocations, double fOwnLookUps,
                         const auto& pPair) {
        comparisons.push_back({.strName = pszName,
                               .nNodes = 1,
                               .fRatioLimit = fRatioLimit,
                               .bMayAllocate = true,
                               .measured = [pPair] { return pPair->Measured(); },
                               .floor = [pPair] { return pPair->Floor(); },
                               .fOwnAllocations = fOwnAllocations,
                               .fOwnLookUps = fOwnLookUps});
    };
    if (IsAlone()) {
        add("BroadcastSend/Send", BROADCAST_SEND_LIMIT, 1, 5, std::make_shared<CBroadcastSend>(host));
    } else {
        std::printf(
            "BroadcastSend/Send: not measured, since this machine's network would hear it; bench/run measures it "
            "in a network of its own where it may make one\n");
    }
    add("NetParameterSend/Send", RECORD_SEND_LIMIT, 10, 12, std::make_shared<CRecordSend>(host));
    add("BroadcastReceive/Receive", BROADCAST_RECEIVE_LIMIT, 5, 2, std::make_shared<CBroadcastReceive>(host));
    return comparisons;
}
