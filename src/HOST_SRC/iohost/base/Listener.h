// Listening on a TCP port: opening it, taking connections, and who makes room where only so many are served at once.
#pragma once

#include "base/Network.h"

#include <functional>
#include <string>

#include "base/Platform.h"

/// Take connections until the acceptor is closed. After an error, mostly that the system is out of something, a pause
/// gives it time to recover.
inline Awaitable<void> AcceptConnections(TcpAcceptor& acceptor, std::function<void(TcpSocket socket)> take,
                                         std::function<void(const std::string& strError)> fail) {
    constexpr std::chrono::milliseconds PAUSE{100};
    SteadyTimer timer(acceptor.get_executor());
    for (;;) {
        error_code error;
        TcpSocket socket(acceptor.get_executor());
        co_await acceptor.async_accept(socket, AwaitInto(error));
        if (!acceptor.is_open()) {
            co_return;
        }
        if (error) {
            fail(error.message());
            co_await Pause(timer, PAUSE);
        } else {
            take(std::move(socket));
        }
    }
}

/// Open, bind and listen. Empty, or why that can't be done; the acceptor is closed then.
inline std::string OpenListener(TcpAcceptor& acceptor, const asio::ip::tcp::endpoint& endpoint) {
    try {
        acceptor.open(endpoint.protocol());
        LetPortBeReused(static_cast<std::uintptr_t>(acceptor.native_handle()));
        acceptor.bind(endpoint);
        acceptor.listen();
        return {};
    } catch (const boost::system::system_error& problem) {
        error_code ignored;
        acceptor.close(ignored);
        return problem.code().message();
    }
}

/// A connection that has brought nothing for so long gives up its place when another one needs it.
inline constexpr std::chrono::seconds SILENCE{60};

/// The connection that has been silent for longest, by SilentSince(), if for at least `silence`; else null.
template <typename Connections>
typename Connections::value_type LongestSilent(const Connections& connections, steady_clock::duration silence) {
    typename Connections::value_type pLongest;
    auto tLatest = steady_clock::now() - silence;
    for (const auto& pConnection : connections) {
        if (const auto tSince = pConnection->SilentSince(); tSince <= tLatest) {
            tLatest = tSince;
            pLongest = pConnection;
        }
    }
    return pLongest;
}
