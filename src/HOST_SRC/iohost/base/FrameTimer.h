// Calls a function once a frame, for as long as the program runs.
#pragma once

#include "base/Network.h"

#include <chrono>
#include <functional>

using FrameTime = steady_clock::time_point;

/// When the next frame is due: the first moment after now that is a whole number of periods from tStart. Frames that
/// were missed because one took too long are skipped, not made up for.
FrameTime NextFrameTime(FrameTime tStart, double fFps, FrameTime tNow);

class CFrameTimer {
public:
    CFrameTimer(asio::io_context& context, double fFps, std::function<void()> onFrame);

    void Start();
    void Stop();

private:
    void AwaitNext();

    SteadyTimer m_timer;
    const double m_fFps;
    const std::function<void()> m_onFrame;
    FrameTime m_tStart;
    bool m_bRunning = false;
};
