// What the connections to other hosts and devices share: the loop that they run in, and the receiver, which they hand
// items to.
#pragma once

#include "network/ReadGate.h"

#include <optional>
#include <span>
#include <string>

#include "base/Caught.h"
#include "base/HostLine.h"
#include "base/Names.h"
#include "host/EventRecord.h"
#include "host/PlayControlItem.h"

/// Where an item came in.
enum class EPeer { Broadcast, Control, Device };
NAMES(EPeer, "broadcast", "control", "device")

/// What was handed to a device's socket; lives for the call.
struct SSentItem {
    int nDevice;                             ///< number of the device
    const CQORNetItemPlayCtlProtocol* pItem; ///< a record; null for bytes
    std::span<const unsigned char> bytes;    ///< bytes as they are; empty for an item
};

/// Items that were dropped because they waited too long for a device.
struct SDroppedItems {
    int nDevice;
    std::optional<std::string> sender; ///< as OnSent named it
    size_t nItems;
};

/// Takes what the network brings. All calls come from the host's one thread.
class INetworkReceiver {
public:
    /// An item came in: hand it to the nodes. Whether one of them took it. The record lives for the call.
    virtual bool OnItem(EPeer nFrom, const SIOEventRecord& record) = 0;

    /// Something is sent. Who sends it: the handle of a node, or none.
    virtual std::optional<std::string> OnSent(const SSentItem& item) = 0;

    virtual void OnDropped(const SDroppedItems& /*dropped*/) {}

protected:
    ~INetworkReceiver() = default;
};

class CPeerLoop {
public:
    /// The receiver must outlive the loop.
    explicit CPeerLoop(INetworkReceiver& receiver) : m_receiver(receiver) {}

    asio::io_context& Context() { return m_context; }
    CReadGate& Gate() { return m_gate; }

    /// Hand an item to the nodes; whether one of them took it. One that fails is logged, and the next ones come.
    bool HandOver(EPeer nFrom, const SIOEventRecord& record) {
        bool bTaken = false;
        const auto handOver = [&] { bTaken = m_receiver.OnItem(nFrom, record); };
        m_nHandedOver += DoGuarded(m_faultLine, "an item of the network failed", handOver) ? 1 : 0;
        return bTaken;
    }
    unsigned long long HandedOverCount() const { return m_nHandedOver; }

    /// Something was handed to a device's socket. Who did that: the handle of a node, or none.
    std::optional<std::string> OnSent(const SSentItem& item) { return m_receiver.OnSent(item); }

    void OnDropped(const SDroppedItems& dropped) { m_receiver.OnDropped(dropped); }

    /// Whether what nodes send is shown only.
    bool IsListenOnly() const { return m_bListenOnly; }
    void SetListenOnly(bool bOn) { m_bListenOnly = bOn; }

    void OnStateChanged() { ++m_nStateVersion; }
    unsigned long long StateVersion() const { return m_nStateVersion; }

private:
    INetworkReceiver& m_receiver;
    asio::io_context m_context{1};
    CReadGate m_gate{m_context};
    CLimitedLine m_faultLine{LOG_ERROR};
    unsigned long long m_nHandedOver = 0;
    unsigned long long m_nStateVersion = 0;
    bool m_bListenOnly = false;
};
