// Takes remote-control records from other hosts, which connect to it as to a framed device.
#pragma once

#include "network/PeerLoop.h"

#include <memory>
#include <set>
#include <string>

#include "base/LimitedLine.h"

class CControlListener : public std::enable_shared_from_this<CControlListener> {
public:
    /// The host must outlive the io_context's handlers.
    CControlListener(boost::asio::io_context& context, const boost::asio::ip::tcp::endpoint& endpoint, IPeerHost& host);
    ~CControlListener();

    /// Open the port; the reason when it can't be had, else nothing. Once it is open, one that was started listens.
    std::string Open();
    bool IsOpen() const { return m_acceptor.is_open(); }

    /// Give the port back, to be opened again or stopped before the loop runs on. Connections stay.
    void CloseSocket();

    /// Take connections on the open port.
    void Start();
    void Stop();

    const boost::asio::ip::tcp::endpoint& Endpoint() const { return m_endpoint; }
    unsigned short Port() const { return m_nPort; }
    OrderedJson State() const;

private:
    class CConnection;

    Awaitable<void> Run();
    Awaitable<std::string> TakeConnection();
    void CountError(const std::string& strError);

    boost::asio::io_context& m_context;
    const boost::asio::ip::tcp::endpoint m_endpoint;
    unsigned short m_nPort; ///< the one that was had, where the endpoint says any
    IPeerHost& m_host;
    TcpAcceptor m_acceptor;
    SteadyTimer m_timer;
    bool m_bStopped = false;
    std::set<std::shared_ptr<CConnection>> m_connections;
    unsigned long long m_nTurnedAway = 0; ///< connections beyond the most that are served at once
    unsigned long long m_nErrors = 0;
    std::string m_strLastError;
    CLimitedLine m_errorLine{LOG_ERROR};
    SItemCounts m_counts;
};
