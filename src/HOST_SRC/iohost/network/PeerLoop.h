// What the connections to other hosts and devices need of the host around them.
#pragma once

#include "base/Network.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/EventRecord.h"
#include "host/RemoteControlRecord.h"
#include "protocol/Fields.h"

/// Where an item came in.
enum class EPeer { Broadcast, Control, Device };

/// Holds back what came in: bytes are read, but nothing is made of them while the gate is closed. Each connection thus
/// reads one piece ahead at most.
class CReadGate {
public:
    explicit CReadGate(boost::asio::io_context& context);

    void Open();
    void Close() { m_bOpen = false; }

    /// Open it for good, and from now on let items through for a few milliseconds at a time only, so that all that the
    /// loop has to do otherwise, frames above all, comes in between.
    void OpenInTurns();

    /// Returns once items may be handled: true. Or false, when the socket has been closed; whoever closes it calls
    /// Wake.
    template <typename Socket>
    Awaitable<bool> Pass(const Socket& socket) {
        while (socket.is_open() && !MayPass()) {
            co_await AwaitChance();
        }
        co_return socket.is_open();
    }
    void Wake() { m_timer.cancel(); }

private:
    bool MayPass();
    Awaitable<void> AwaitChance();

    boost::asio::io_context& m_context;
    SteadyTimer m_timer; ///< never expires by itself
    bool m_bOpen = false;
    bool m_bInTurns = false;
    std::optional<std::chrono::steady_clock::time_point> m_tTurnEnd; ///< none: no turn has begun
};

/// What is handed to a parser at once, so that a turn can end between items.
inline constexpr size_t PARSED_AT_ONCE = 256;

/// Hears of the items. All calls come from the host's one thread.
class IPeerHost {
public:
    virtual CReadGate& Gate() = 0;

    /// An item came in: hand it to the nodes. Whether one of them took it.
    virtual bool OnRecord(EPeer nFrom, EIODevice nDevice, CQORPanelRemoteCtrlData& record) = 0;
    virtual bool OnBroadcast(SBroadcastItem& item) = 0;
    virtual bool OnDeviceText(int nDeviceId, const CString& strText) = 0;

    /// A node handed something to a device's socket.
    virtual void OnSent(OrderedJson entry) = 0;

    /// How many bytes of it OnSent is to tell.
    virtual size_t MostShownBytes() const { return SIZE_MAX; }

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
