// Receives the broadcasts of other hosts. Each datagram is one message; a broken one is counted and the next one read.
#pragma once

#include "network/PeerLoop.h"

#include <boost/asio/basic_datagram_socket.hpp>
#include <boost/asio/ip/udp.hpp>

#include <array>
#include <memory>

#include "base/HostLine.h"
#include "network/NetworkState.h"

class CBroadcastReceiver : public std::enable_shared_from_this<CBroadcastReceiver> {
public:
    /// The loop must outlive its handlers.
    CBroadcastReceiver(CPeerLoop& loop, const asio::ip::udp::endpoint& endpoint);

    /// Open the port; the reason when it can't be had, else nothing. Once it is open, one that was started receives.
    std::string Open();
    bool IsOpen() const { return m_socket.is_open(); }

    /// Give the port back, to be opened again or stopped before the loop runs on.
    void CloseSocket();

    /// Receive; a port that can't be had is tried again and again, and so is one that fails.
    void Start();
    void Stop();

    const asio::ip::udp::endpoint& Endpoint() const { return m_endpoint; }
    unsigned short Port() const { return m_state.nPort; }
    const SBroadcastState& State() const { return m_state; }

private:
    Awaitable<void> Run();
    Awaitable<void> Receive();
    void ShowProblem(const std::string& strProblem);
    void CountError(const std::string& strError);
    void Take(std::span<const unsigned char> datagram);

    CPeerLoop& m_loop;
    const asio::ip::udp::endpoint m_endpoint;
    SBroadcastState m_state; ///< its port is the one that was had, where the endpoint says any
    asio::basic_datagram_socket<asio::ip::udp, Executor> m_socket;
    SteadyTimer m_timer;
    bool m_bStopped = false;
    CLimitedLine m_errorLine{LOG_ERROR};
    std::array<unsigned char, 65536> m_datagram; ///< no datagram is longer
};
