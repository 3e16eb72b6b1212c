// When a connection is tried again: soon at first, then once a second.
#pragma once

#include "base/Network.h"

#include <algorithm>
#include <utility>

class CReconnection {
public:
    explicit CReconnection(asio::io_context& context) : m_timer(context) {}

    /// A connection that lasted so long is over. After a good one the next is tried without a long pause.
    void OnConnectionLasted(steady_clock::duration time) {
        constexpr std::chrono::seconds GOOD_CONNECTION{1};
        m_pause = time >= GOOD_CONNECTION ? SHORTEST_PAUSE : m_pause;
    }

    /// Returns when it's time to try again, or after Stop.
    Awaitable<void> AwaitNext() { return Pause(m_timer, NextPause()); }

    /// How long until the next attempt; the pause after that is longer.
    std::chrono::milliseconds NextPause() { return std::exchange(m_pause, std::min(2 * m_pause, LONGEST_PAUSE)); }

    /// It's time to try again.
    void TryNow() {
        m_pause = SHORTEST_PAUSE;
        m_timer.cancel();
    }

    void Stop() { m_timer.cancel(); }

private:
    static constexpr std::chrono::milliseconds SHORTEST_PAUSE{100};
    static constexpr std::chrono::milliseconds LONGEST_PAUSE{1000};

    SteadyTimer m_timer;
    std::chrono::milliseconds m_pause = SHORTEST_PAUSE;
};
