// Opening a TCP port to listen on.
#pragma once

#include "base/Network.h"

#include "base/Platform.h"

/// Open, bind and listen. On an error the acceptor is closed.
inline void OpenListener(TcpAcceptor& acceptor, const boost::asio::ip::tcp::endpoint& endpoint,
                         boost::system::error_code& error) {
    acceptor.open(endpoint.protocol(), error);
    if (!error) {
        LetPortBeReused(static_cast<std::uintptr_t>(acceptor.native_handle()));
    }
    if (!error) {
        acceptor.bind(endpoint, error);
    }
    if (!error) {
        acceptor.listen(boost::asio::socket_base::max_listen_connections, error);
    }
    if (error) {
        boost::system::error_code ignored;
        acceptor.close(ignored);
    }
}
