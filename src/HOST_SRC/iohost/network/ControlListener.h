// Takes remote-control records from other hosts, which connect to it as to a framed device.
#pragma once

#include "network/PeerLoop.h"

#include <memory>
#include <set>
#include <string>

#include "base/HostLine.h"
#include "base/Listener.h"
#include "network/NetworkState.h"

class CControlListener : public std::enable_shared_from_this<CControlListener> {
public:
    /// The loop must outlive its handlers. A connection that was silent for so long makes room for another.
    CControlListener(CPeerLoop& loop, const asio::ip::tcp::endpoint& endpoint,
                     steady_clock::duration silence = SILENCE);
    ~CControlListener();

    /// Open the port; the reason when it can't be had, else nothing. Once it is open, one that was started listens.
    std::string Open();
    bool IsOpen() const { return m_acceptor.is_open(); }

    /// Give the port back, to be opened again or stopped before the loop runs on. Connections stay.
    void CloseSocket();

    /// Take connections on the open port.
    void Start();
    void Stop();

    const asio::ip::tcp::endpoint& Endpoint() const { return m_endpoint; }
    unsigned short Port() const { return m_state.nPort; }
    SControlState State() const;

private:
    class CConnection;

    Awaitable<void> Run();
    Awaitable<std::string> TakeConnection();
    Awaitable<bool> MakeRoom();
    void CountError(const std::string& strError);

    CPeerLoop& m_loop;
    const asio::ip::tcp::endpoint m_endpoint;
    const steady_clock::duration m_silence;
    SControlState m_state; ///< its port is the one that was had, where the endpoint says any
    TcpAcceptor m_acceptor;
    SteadyTimer m_timer;
    bool m_bStopped = false;
    std::set<std::shared_ptr<CConnection>> m_connections;
    CLimitedLine m_errorLine{LOG_ERROR};
    CLimitedLine m_roomLine{LOG_INFORMATION};
};
