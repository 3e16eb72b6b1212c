// Opening a TCP port to listen on.
#pragma once

#include "Network.h"

/// Open, bind and listen. On an error the acceptor is closed.
inline void OpenListener(TcpAcceptor& acceptor, const boost::asio::ip::tcp::endpoint& endpoint,
                         boost::system::error_code& error) {
    acceptor.open(endpoint.protocol(), error);
#if !defined(BOOST_ASIO_WINDOWS)
    // Connections of a program that has just ended don't keep the port; on Windows it would let two programs share it.
    if (!error) {
        acceptor.set_option(boost::asio::socket_base::reuse_address(true), error);
    }
#endif
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
