// Takes remote-control records from other hosts, which connect to it as to a framed device.
#pragma once

#include "PeerLoop.h"

#include <memory>
#include <set>

class CControlListener : public std::enable_shared_from_this<CControlListener> {
public:
    /// The host must outlive the io_context's handlers.
    CControlListener(boost::asio::io_context& context, const boost::asio::ip::tcp::endpoint& endpoint, IPeerHost& host);
    ~CControlListener();

    /// Open the port; the reason when it can't be had, else nothing.
    std::string Open();

    /// Take connections on the open port.
    void Start();
    void Stop();

    const boost::asio::ip::tcp::endpoint& Endpoint() const { return m_endpoint; }
    unsigned short Port() const;
    OrderedJson State() const;

private:
    class CConnection;

    Awaitable<void> Run();

    boost::asio::io_context& m_context;
    const boost::asio::ip::tcp::endpoint m_endpoint;
    IPeerHost& m_host;
    TcpAcceptor m_acceptor;
    SteadyTimer m_timer;
    bool m_bStopped = false;
    std::set<std::shared_ptr<CConnection>> m_connections;
    unsigned long long m_nTurnedAway = 0; ///< connections beyond the most that are served at once
    SItemCounts m_counts;
};
