#include "network/ReadGate.h"

#include <boost/asio/post.hpp>

CReadGate::CReadGate(asio::io_context& context)
    : m_context(context), m_timer(context, SteadyTimer::time_point::max()) {}

void CReadGate::Open() {
    m_bOpen = true;
    Wake();
}

void CReadGate::OpenInTurns() {
    m_bInTurns = true;
    Open();
}

/// A turn begins with its first item, lets items pass for LONGEST_TURN, and ends once the loop has run all that waited.
bool CReadGate::MayPass() {
    constexpr std::chrono::milliseconds LONGEST_TURN{2}; // much shorter than a frame
    if (!m_bOpen || !m_bInTurns) {
        return m_bOpen;
    }
    const auto tNow = steady_clock::now();
    if (!m_tTurnEnd) {
        m_tTurnEnd = tNow + LONGEST_TURN;
        asio::post(m_context, [this] { m_tTurnEnd.reset(); });
    }
    return tNow < *m_tTurnEnd;
}

Awaitable<void> CReadGate::AwaitChance() {
    if (m_bOpen) {
        co_await asio::post(m_context, asio::use_awaitable_t<Executor>());
    } else {
        error_code ignored;
        co_await m_timer.async_wait(AwaitInto(ignored));
    }
}
