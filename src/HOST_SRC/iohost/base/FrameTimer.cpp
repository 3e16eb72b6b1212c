#include "base/FrameTimer.h"

#include <cmath>

FrameTime NextFrameTime(FrameTime tStart, double fFps, FrameTime tNow) {
    using Seconds = std::chrono::duration<double>;
    const double fFramesSoFar = std::floor(Seconds(tNow - tStart).count() * fFps);
    FrameTime tNext = tStart;
    // Rounding to the clock's ticks may bring the first one back to now.
    for (double fFrame = fFramesSoFar + 1; tNext <= tNow; ++fFrame) {
        tNext = tStart + std::chrono::duration_cast<FrameTime::duration>(Seconds(fFrame / fFps));
    }
    return tNext;
}

CFrameTimer::CFrameTimer(asio::io_context& context, double fFps, std::function<void()> onFrame)
    : m_timer(context), m_fFps(fFps), m_onFrame(std::move(onFrame)) {}

void CFrameTimer::Start() {
    m_bRunning = true;
    m_tStart = steady_clock::now();
    AwaitNext();
}

void CFrameTimer::Stop() {
    m_bRunning = false;
    m_timer.cancel();
}

void CFrameTimer::AwaitNext() {
    m_timer.expires_at(NextFrameTime(m_tStart, m_fFps, steady_clock::now()));
    m_timer.async_wait([this](const error_code& error) {
        if (!error && m_bRunning) {
            m_onFrame();
            if (m_bRunning) {
                AwaitNext();
            }
        }
    });
}
