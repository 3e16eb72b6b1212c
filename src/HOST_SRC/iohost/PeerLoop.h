// What the connections to other hosts and devices need of the host around them.
#pragma once

#include "Network.h"

#include <span>
#include <string>
#include <vector>

#include "Fields.h"
#include "host/HostNetwork.h"

/// Where an item came in.
enum class EPeer { Broadcast, Control, Device };

/// Holds back what came in: bytes are read, but nothing is made of them while the gate is closed. Each connection thus
/// reads one piece ahead at most.
class CReadGate {
public:
    explicit CReadGate(boost::asio::io_context& context);

    void Open();
    void Close() { m_bOpen = false; }

    /// Returns once the gate is open.
    Awaitable<void> Pass();

private:
    SteadyTimer m_timer; ///< never expires by itself
    bool m_bOpen = false;
};

/// Hears of the items. All calls come from the host's one thread.
class IPeerHost {
public:
    virtual CReadGate& Gate() = 0;

    /// An item came in: hand it to the nodes. Whether one of them took it.
    virtual bool OnRecord(EPeer nFrom, EIODevice nDevice, CQORPanelRemoteCtrlData& record) = 0;
    virtual bool OnBroadcast(SBroadcastItem& item) = 0;

    /// A node handed something to a device's socket.
    virtual void OnSent(OrderedJson entry) = 0;

    /// Whether what nodes send is shown only.
    virtual bool IsListenOnly() const = 0;

    /// Something that NetworkState tells is another.
    virtual void OnStateChanged() = 0;

protected:
    ~IPeerHost() = default;
};

/// The first bytes of the last message, for people.
class CLastBytes {
public:
    void Set(std::span<const unsigned char> bytes);

    /// {"size","text","hex"}; null before the first message. A long message is cut.
    OrderedJson ToJson() const;

private:
    std::vector<unsigned char> m_bytes;
    size_t m_nSize = 0;
    bool m_bSet = false;
};

/// The items of one source: how many came, what became of them.
struct SItemCounts {
    unsigned long long nReceived = 0; ///< whole and well-formed ones
    unsigned long long nMatched = 0;  ///< of these, taken by a node
    unsigned long long nRejected = 0; ///< refused by the reader
    std::string strLastRejected;      ///< why the last one was refused

    /// Add as the members of a state: "received", "matched", "rejected", "last_rejected".
    void AddTo(OrderedJson& state) const;
};

/// A text or null.
OrderedJson TextOrNull(const std::string& strText);

/// An endpoint as ADDRESS:PORT.
template <typename Endpoint>
std::string EndpointText(const Endpoint& endpoint) {
    const std::string strAddress = endpoint.address().to_string();
    return (endpoint.address().is_v6() ? "[" + strAddress + "]" : strAddress) + ":" + std::to_string(endpoint.port());
}
