// Who makes room for a new connection where only so many are served at once.
#pragma once

#include <chrono>

/// A connection that has brought nothing for so long gives up its place when another one needs it.
inline constexpr std::chrono::seconds SILENCE{60};

/// Of connections that tell SilentSince(), the one silent for longest, and for so long at least; null without one.
template <typename Connections>
typename Connections::value_type LongestSilent(const Connections& connections,
                                               std::chrono::steady_clock::duration silence) {
    typename Connections::value_type pLongest;
    auto tLatest = std::chrono::steady_clock::now() - silence;
    for (const auto& pConnection : connections) {
        if (const auto tSince = pConnection->SilentSince(); tSince <= tLatest) {
            tLatest = tSince;
            pLongest = pConnection;
        }
    }
    return pLongest;
}
