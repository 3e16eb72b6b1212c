// Says when what came in over the network may be handled.
#pragma once

#include "base/Network.h"

#include <optional>

/// While it is closed nothing is made of bytes that came in. Each connection thus reads one piece ahead at most.
class CReadGate {
public:
    explicit CReadGate(asio::io_context& context);

    void Open();
    void Close() { m_bOpen = false; }

    /// Open it for good, and from now on let items through for a few milliseconds at a time only, so that all that the
    /// loop has to do otherwise, frames above all, comes in between.
    void OpenInTurns();

    /// True once items may be handled; false when the socket has been closed: whoever closes it calls Wake.
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

    asio::io_context& m_context;
    SteadyTimer m_timer; ///< never expires by itself
    bool m_bOpen = false;
    bool m_bInTurns = false;
    std::optional<steady_clock::time_point> m_tTurnEnd; ///< none: no turn has begun
};
