#include <windows.h>

#include <compat/testing.h>

#include <chrono>
#include <mutex>

namespace {

std::mutex g_frozenMutex; // guards the frozen value
std::optional<std::uint64_t> g_nFrozenMilliseconds;

} // namespace

void CompatFreezeTickCount(std::optional<std::uint64_t> nMilliseconds) {
    const std::lock_guard lock(g_frozenMutex);
    g_nFrozenMilliseconds = nMilliseconds;
}

DWORD WINAPI GetTickCount() {
    {
        const std::lock_guard lock(g_frozenMutex);
        if (g_nFrozenMilliseconds)
            return static_cast<DWORD>(*g_nFrozenMilliseconds);
    }
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch(); // CLOCK_MONOTONIC
    return static_cast<DWORD>(std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}
