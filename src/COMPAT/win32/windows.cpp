// Windows and the message queue.

#include "text.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace {

constexpr UINT g_nFirstRegistered = 0xC000;

struct SWindow {
    WNDPROC pfnWindowProc = nullptr;
    LONG_PTR nUserData = 0;
    bool bEnabled = true;
};

// All state of this file. Window procedures are called without the lock.
struct SWindowSystem {
    std::mutex mutex;
    std::map<std::wstring, UINT> messageNames; // names are case folded
    std::map<std::wstring, WNDPROC> classes;
    std::map<HWND, SWindow> windows;
    std::uintptr_t nNextHandle = 0x10010;
    std::deque<MSG> queue;
    std::atomic<std::size_t> nQueued = 0; // messages in it: programs often look when there are none

    SWindow* Find(HWND hWnd) {
        const auto found = windows.find(hWnd);
        return found == windows.end() ? nullptr : &found->second;
    }
};

SWindowSystem& System() {
    static SWindowSystem& system = *new SWindowSystem; // outlives the static objects of all libraries
    return system;
}

} // namespace

UINT WINAPI RegisterWindowMessageW(LPCWSTR pszName) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    const UINT nNext = g_nFirstRegistered + static_cast<UINT>(system.messageNames.size());
    return system.messageNames.try_emplace(FoldCase(pszName), nNext).first->second;
}

// ---- Windows --------------------------------------------------------------------------------------------------------

ATOM WINAPI RegisterClassW(const WNDCLASSW* pClass) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    return system.classes.try_emplace(FoldCase(pClass->lpszClassName), pClass->lpfnWndProc).second ? 1 : 0;
}

BOOL WINAPI UnregisterClassW(LPCWSTR pszClassName, HINSTANCE) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    return system.classes.erase(FoldCase(pszClassName)) != 0;
}

HWND WINAPI CreateWindowExW(DWORD, LPCWSTR pszClassName, LPCWSTR, DWORD, int, int, int, int, HWND, HMENU, HINSTANCE,
                            LPVOID) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    const auto windowClass = system.classes.find(FoldCase(pszClassName));
    if (windowClass == system.classes.end())
        return nullptr;
    const HWND hWnd = reinterpret_cast<HWND>(system.nNextHandle);
    system.nNextHandle += 4;
    system.windows[hWnd].pfnWindowProc = windowClass->second;
    return hWnd;
}

BOOL WINAPI DestroyWindow(HWND hWnd) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    if (system.windows.erase(hWnd) == 0)
        return FALSE;
    system.nQueued -= std::erase_if(system.queue, [hWnd](const MSG& message) { return message.hwnd == hWnd; });
    return TRUE;
}

LRESULT WINAPI DefWindowProcW(HWND, UINT, WPARAM, LPARAM) {
    return 0;
}

LONG_PTR WINAPI SetWindowLongPtrW(HWND hWnd, int nIndex, LONG_PTR nNewLong) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    SWindow* pWindow = system.Find(hWnd);
    return pWindow == nullptr || nIndex != GWLP_USERDATA ? 0 : std::exchange(pWindow->nUserData, nNewLong);
}

LONG_PTR WINAPI GetWindowLongPtrW(HWND hWnd, int nIndex) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    const SWindow* pWindow = system.Find(hWnd);
    return pWindow == nullptr || nIndex != GWLP_USERDATA ? 0 : pWindow->nUserData;
}

BOOL WINAPI EnableWindow(HWND hWnd, BOOL bEnable) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    SWindow* pWindow = system.Find(hWnd);
    return pWindow != nullptr && !std::exchange(pWindow->bEnabled, bEnable != FALSE);
}

BOOL WINAPI IsWindowEnabled(HWND hWnd) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    const SWindow* pWindow = system.Find(hWnd);
    return pWindow != nullptr && pWindow->bEnabled;
}

// ---- Messages -------------------------------------------------------------------------------------------------------

BOOL WINAPI PostMessageW(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    if (hWnd != nullptr && system.Find(hWnd) == nullptr)
        return FALSE;
    system.queue.push_back({hWnd, nMessage, wParam, lParam});
    ++system.nQueued;
    return TRUE;
}

BOOL WINAPI PeekMessageW(MSG* pMsg, HWND hWnd, UINT nFilterMin, UINT nFilterMax, UINT) {
    SWindowSystem& system = System();
    if (system.nQueued == 0)
        return FALSE;
    const std::lock_guard lock(system.mutex);
    const auto found = std::find_if(system.queue.begin(), system.queue.end(), [&](const MSG& message) {
        const bool bAll = nFilterMin == 0 && nFilterMax == 0;
        return (hWnd == nullptr || message.hwnd == hWnd) &&
               (bAll || (message.message >= nFilterMin && message.message <= nFilterMax));
    });
    if (found == system.queue.end())
        return FALSE;
    *pMsg = *found;
    system.queue.erase(found);
    --system.nQueued;
    return TRUE;
}

LRESULT WINAPI DispatchMessageW(const MSG* pMsg) {
    WNDPROC pfnWindowProc = nullptr;
    {
        SWindowSystem& system = System();
        const std::lock_guard lock(system.mutex);
        if (const SWindow* pWindow = system.Find(pMsg->hwnd))
            pfnWindowProc = pWindow->pfnWindowProc;
    }
    return pfnWindowProc == nullptr ? 0 : pfnWindowProc(pMsg->hwnd, pMsg->message, pMsg->wParam, pMsg->lParam);
}
