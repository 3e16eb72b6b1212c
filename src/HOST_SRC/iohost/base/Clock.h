// The session's clock: what the module's nodes and the host's own account of held input take for the time.
#pragma once

#include <algorithm>
#include <boost/core/noncopyable.hpp>
#include <chrono>
#include <cstdint>
#include <optional>

#include "base/Platform.h"

/// Milliseconds since 1970, for people to read.
inline long long TimeOfDayMs() {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
}

class CClock : boost::noncopyable {
public:
    CClock() = default;
    ~CClock() { Set(std::nullopt); }

    /// Milliseconds, counted from no time in particular.
    std::uint64_t Now() const { return m_nStopped.value_or(Running()); }

    /// Milliseconds since a time that Now returned; 0 where the clock was set back since.
    std::uint64_t Since(std::uint64_t tThen) const { return std::max(Now(), tThen) - tThen; }

    /// What Now would return if the clock weren't stopped.
    static std::uint64_t Running() {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
    }

    /// Stop it at a time, and the module's with it, or let both run (none).
    void Set(std::optional<std::uint64_t> nMilliseconds) {
        FreezeClock(nMilliseconds);
        m_nStopped = nMilliseconds;
    }

private:
    std::optional<std::uint64_t> m_nStopped;
};
