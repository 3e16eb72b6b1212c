#include <windows.h>

#include <algorithm>
#include <array>
#include <mutex>

namespace {

constexpr int g_nKeys = 256;
std::mutex g_keyboardMutex; // guards the state
std::array<BYTE, g_nKeys> g_keyState{};

} // namespace

SHORT WINAPI GetKeyState(int nVirtKey) {
    if (nVirtKey < 0 || nVirtKey >= g_nKeys)
        return 0;
    const std::lock_guard lock(g_keyboardMutex);
    const BYTE nState = g_keyState[static_cast<std::size_t>(nVirtKey)];
    return static_cast<SHORT>(((nState & 0x80) != 0 ? 0xFF80 : 0) | (nState & 0x01));
}

BOOL WINAPI SetKeyboardState(LPBYTE pKeyState) {
    const std::lock_guard lock(g_keyboardMutex);
    std::copy_n(pKeyState, g_nKeys, g_keyState.begin());
    return TRUE;
}
