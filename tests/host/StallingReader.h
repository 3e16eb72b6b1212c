// A reader of lines that can stall, and go away. The thread that writes to it may outlive the test.
#pragma once

#include <condition_variable>
#include <mutex>

#include "HostTest.h"

class CStallingReader {
public:
    bool Take(std::string_view text) {
        std::unique_lock lock(m_mutex);
        m_bCalled = true;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return !m_bStalled; });
        m_strTaken += text;
        m_changed.notify_all();
        return !m_bGone;
    }

    void Stall(bool bStalled) {
        const std::lock_guard lock(m_mutex);
        m_bStalled = bStalled;
        m_changed.notify_all();
    }

    void GoAway() {
        const std::lock_guard lock(m_mutex);
        m_bGone = true;
    }

    /// Until the thread is within a call, which stalls if the reader does.
    void AwaitCall() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_bCalled; });
    }

    /// The next line; empty when none comes.
    std::string NextLine() {
        std::unique_lock lock(m_mutex);
        size_t nEnd = std::string::npos;
        m_changed.wait_for(lock, LONGEST_WAIT, [&] {
            nEnd = m_strTaken.find('\n', m_nNext);
            return nEnd != std::string::npos;
        });
        const size_t nBegin = m_nNext;
        m_nNext = nEnd != std::string::npos ? nEnd + 1 : m_nNext;
        return nEnd != std::string::npos ? m_strTaken.substr(nBegin, nEnd - nBegin) : std::string();
    }

    /// All that it has taken.
    std::string Taken() {
        const std::lock_guard lock(m_mutex);
        return m_strTaken;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_strTaken;
    size_t m_nNext = 0; ///< where the next line begins
    bool m_bStalled = false;
    bool m_bGone = false;
    bool m_bCalled = false;
};
