#include <windows.h>

#include <compat/testing.h>

#include <chrono>
#include <mutex>
#include <thread>

namespace {

std::mutex g_frozenMutex; // guards the frozen value
std::optional<std::uint64_t> g_nFrozenMilliseconds;

} // namespace

void CompatFreezeTickCount(std::optional<std::uint64_t> nMilliseconds) {
    const std::lock_guard lock(g_frozenMutex);
    g_nFrozenMilliseconds = nMilliseconds;
}

ULONGLONG WINAPI GetTickCount64() {
    {
        const std::lock_guard lock(g_frozenMutex);
        if (g_nFrozenMilliseconds)
            return *g_nFrozenMilliseconds;
    }
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch(); // CLOCK_MONOTONIC
    return static_cast<ULONGLONG>(std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

DWORD WINAPI GetTickCount() {
    return static_cast<DWORD>(GetTickCount64());
}

void WINAPI Sleep(DWORD nMilliseconds) {
    std::this_thread::sleep_for(std::chrono::milliseconds(nMilliseconds));
}
