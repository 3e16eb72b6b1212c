// What the connections to other hosts and devices share: the loop that they run in, and the way to the receiver.
#pragma once

#include "network/ReadGate.h"

#include "base/Caught.h"
#include "base/LimitedLine.h"
#include "network/Receiver.h"

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

    /// The network's state is another.
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
