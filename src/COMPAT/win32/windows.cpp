// Windows and the message queue.

#include "text.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t g_nQueueLimit = 10000; // as Windows' default
constexpr UINT g_nFirstRegistered = 0xC000;
constexpr UINT g_nLastRegistered = 0xFFFF;
constexpr std::size_t g_nLongestName = 255;

struct SWindowClass {
    ATOM nAtom;
    WNDPROC pfnWindowProc;
};

struct SWindow {
    std::wstring strClass; // case folded
    WNDPROC pfnWindowProc = nullptr;
    LONG_PTR nUserData = 0;
    DWORD nStyle = 0;
    HWND hParent = nullptr;
};

// All state of this file. Window procedures are called without the lock.
struct SWindowSystem {
    std::mutex mutex;
    std::condition_variable posted;
    std::map<std::wstring, UINT> messageNames;
    std::map<std::wstring, SWindowClass> classes;
    ATOM nNextAtom = g_nFirstRegistered;
    std::map<HWND, SWindow> windows;
    std::uintptr_t nNextHandle = 0x10010;
    std::deque<MSG> queue;
    std::optional<int> nQuitCode;

    SWindow* Find(HWND hWnd) {
        const auto found = windows.find(hWnd);
        return found == windows.end() ? nullptr : &found->second;
    }
    bool HasStyle(HWND hWnd, DWORD nStyle) {
        const SWindow* pWindow = Find(hWnd);
        return pWindow != nullptr && (pWindow->nStyle & nStyle) != 0;
    }
};

SWindowSystem& System() {
    static SWindowSystem& system = *new SWindowSystem; // outlives the static objects of all libraries
    return system;
}

template <class RESULT>
RESULT Fail(DWORD nError, RESULT result) {
    SetLastError(nError);
    return result;
}

std::optional<std::wstring> ClassKey(LPCWSTR pszClassName) {
    SWindowSystem& system = System();
    if (!IS_INTRESOURCE(pszClassName))
        return FoldCase(pszClassName);
    const ATOM nAtom = static_cast<ATOM>(reinterpret_cast<std::uintptr_t>(pszClassName));
    for (const auto& [strName, windowClass] : system.classes) {
        if (windowClass.nAtom == nAtom)
            return strName;
    }
    return std::nullopt;
}

bool Matches(const MSG& message, HWND hWnd, UINT nFilterMin, UINT nFilterMax) {
    return (hWnd == nullptr || message.hwnd == hWnd) &&
           ((nFilterMin == 0 && nFilterMax == 0) || (message.message >= nFilterMin && message.message <= nFilterMax));
}

// With the lock held. As on Windows, WM_QUIT comes, whatever the filter, when no other message does.
bool TakeMessage(SWindowSystem& system, LPMSG pMsg, HWND hWnd, UINT nFilterMin, UINT nFilterMax, bool bRemove) {
    const auto found = std::find_if(system.queue.begin(), system.queue.end(),
                                    [&](const MSG& message) { return Matches(message, hWnd, nFilterMin, nFilterMax); });
    if (found != system.queue.end()) {
        *pMsg = *found;
        if (bRemove)
            system.queue.erase(found);
        return true;
    }
    if (system.nQuitCode) {
        *pMsg = MSG{nullptr, WM_QUIT, static_cast<WPARAM>(*system.nQuitCode), 0, GetTickCount(), {0, 0}};
        if (bRemove)
            system.nQuitCode.reset();
        return true;
    }
    return false;
}

} // namespace

UINT WINAPI RegisterWindowMessageW(LPCWSTR pszName) {
    if (pszName == nullptr || *pszName == 0 || std::wcslen(pszName) > g_nLongestName)
        return Fail(ERROR_INVALID_PARAMETER, 0u);
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    const UINT nNext = g_nFirstRegistered + static_cast<UINT>(system.messageNames.size());
    const std::wstring strName = FoldCase(pszName);
    if (nNext > g_nLastRegistered && !system.messageNames.contains(strName))
        return Fail(ERROR_NOT_ENOUGH_MEMORY, 0u);
    return system.messageNames.try_emplace(strName, nNext).first->second;
}

// ---- Classes --------------------------------------------------------------------------------------------------------

ATOM WINAPI RegisterClassExW(const WNDCLASSEXW* pClass) {
    if (pClass == nullptr || pClass->cbSize != sizeof(WNDCLASSEXW) || pClass->lpfnWndProc == nullptr ||
        pClass->lpszClassName == nullptr || *pClass->lpszClassName == 0)
        return Fail<ATOM>(ERROR_INVALID_PARAMETER, 0);
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    const auto [position, bNew] = system.classes.try_emplace(FoldCase(pClass->lpszClassName),
                                                             SWindowClass{system.nNextAtom, pClass->lpfnWndProc});
    if (!bNew)
        return Fail<ATOM>(ERROR_CLASS_ALREADY_EXISTS, 0);
    system.nNextAtom++;
    return position->second.nAtom;
}

ATOM WINAPI RegisterClassW(const WNDCLASSW* pClass) {
    if (pClass == nullptr)
        return Fail<ATOM>(ERROR_INVALID_PARAMETER, 0);
    WNDCLASSEXW classEx{};
    classEx.cbSize = sizeof(classEx);
    classEx.lpfnWndProc = pClass->lpfnWndProc;
    classEx.hInstance = pClass->hInstance;
    classEx.lpszClassName = pClass->lpszClassName;
    return RegisterClassExW(&classEx);
}

BOOL WINAPI UnregisterClassW(LPCWSTR pszClassName, HINSTANCE) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    const auto strKey = ClassKey(pszClassName);
    if (!strKey || !system.classes.contains(*strKey))
        return Fail(ERROR_CLASS_DOES_NOT_EXIST, FALSE);
    for (const auto& [hWnd, window] : system.windows) {
        if (window.strClass == *strKey)
            return Fail(ERROR_CLASS_HAS_WINDOWS, FALSE);
    }
    system.classes.erase(*strKey);
    return TRUE;
}

// ---- Windows --------------------------------------------------------------------------------------------------------

HWND WINAPI CreateWindowExW(DWORD nExStyle, LPCWSTR pszClassName, LPCWSTR pszWindowName, DWORD nStyle, int x, int y,
                            int nWidth, int nHeight, HWND hParent, HMENU hMenu, HINSTANCE hInstance, LPVOID pParam) {
    SWindowSystem& system = System();
    HWND hWnd = nullptr;
    {
        const std::lock_guard lock(system.mutex);
        const auto strKey = ClassKey(pszClassName);
        const auto windowClass = strKey ? system.classes.find(*strKey) : system.classes.end();
        if (windowClass == system.classes.end())
            return Fail<HWND>(ERROR_CANNOT_FIND_WND_CLASS, nullptr);
        if (hParent != nullptr && hParent != HWND_MESSAGE && system.Find(hParent) == nullptr)
            return Fail<HWND>(ERROR_INVALID_WINDOW_HANDLE, nullptr);
        hWnd = reinterpret_cast<HWND>(system.nNextHandle);
        system.nNextHandle += 4;
        system.windows[hWnd] = {*strKey, windowClass->second.pfnWindowProc, 0, nStyle, hParent};
    }

    CREATESTRUCTW create{
        pParam,        hInstance,    hMenu,   hParent, nHeight, nWidth, y, x, static_cast<LONG>(nStyle),
        pszWindowName, pszClassName, nExStyle};
    const LPARAM lParam = reinterpret_cast<LPARAM>(&create);
    if (SendMessageW(hWnd, WM_NCCREATE, 0, lParam) == 0) {
        const std::lock_guard lock(system.mutex);
        system.windows.erase(hWnd);
        return nullptr;
    }
    if (SendMessageW(hWnd, WM_CREATE, 0, lParam) == -1) {
        DestroyWindow(hWnd);
        return nullptr;
    }
    return IsWindow(hWnd) ? hWnd : nullptr;
}

BOOL WINAPI DestroyWindow(HWND hWnd) {
    if (!IsWindow(hWnd))
        return Fail(ERROR_INVALID_WINDOW_HANDLE, FALSE);
    SendMessageW(hWnd, WM_DESTROY, 0, 0);

    SWindowSystem& system = System();
    std::vector<HWND> children;
    {
        const std::lock_guard lock(system.mutex);
        for (const auto& [hOther, window] : system.windows) {
            if (window.hParent == hWnd)
                children.push_back(hOther);
        }
    }
    for (HWND hChild : children)
        DestroyWindow(hChild);

    SendMessageW(hWnd, WM_NCDESTROY, 0, 0);
    const std::lock_guard lock(system.mutex);
    system.windows.erase(hWnd);
    std::erase_if(system.queue, [hWnd](const MSG& message) { return message.hwnd == hWnd; });
    return TRUE;
}

BOOL WINAPI IsWindow(HWND hWnd) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    return system.Find(hWnd) != nullptr;
}

LRESULT WINAPI DefWindowProcW(HWND hWnd, UINT nMessage, WPARAM, LPARAM) {
    if (nMessage == WM_NCCREATE)
        return TRUE;
    if (nMessage == WM_CLOSE)
        DestroyWindow(hWnd);
    return 0;
}

LONG_PTR WINAPI SetWindowLongPtrW(HWND hWnd, int nIndex, LONG_PTR nNewLong) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    SWindow* pWindow = system.Find(hWnd);
    if (pWindow == nullptr)
        return Fail<LONG_PTR>(ERROR_INVALID_WINDOW_HANDLE, 0);
    if (nIndex == GWLP_USERDATA)
        return std::exchange(pWindow->nUserData, nNewLong);
    if (nIndex == GWLP_WNDPROC && nNewLong != 0) {
        WNDPROC pfnOld = std::exchange(pWindow->pfnWindowProc, reinterpret_cast<WNDPROC>(nNewLong));
        return reinterpret_cast<LONG_PTR>(pfnOld);
    }
    return Fail<LONG_PTR>(ERROR_INVALID_INDEX, 0);
}

LONG_PTR WINAPI GetWindowLongPtrW(HWND hWnd, int nIndex) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    const SWindow* pWindow = system.Find(hWnd);
    if (pWindow == nullptr)
        return Fail<LONG_PTR>(ERROR_INVALID_WINDOW_HANDLE, 0);
    if (nIndex == GWLP_USERDATA)
        return pWindow->nUserData;
    if (nIndex == GWLP_WNDPROC)
        return reinterpret_cast<LONG_PTR>(pWindow->pfnWindowProc);
    return Fail<LONG_PTR>(ERROR_INVALID_INDEX, 0);
}

BOOL WINAPI EnableWindow(HWND hWnd, BOOL bEnable) {
    SWindowSystem& system = System();
    bool bWasDisabled = false;
    {
        const std::lock_guard lock(system.mutex);
        SWindow* pWindow = system.Find(hWnd);
        if (pWindow == nullptr)
            return Fail(ERROR_INVALID_WINDOW_HANDLE, FALSE);
        bWasDisabled = (pWindow->nStyle & WS_DISABLED) != 0;
        pWindow->nStyle = bEnable ? pWindow->nStyle & ~WS_DISABLED : pWindow->nStyle | WS_DISABLED;
    }
    if (bWasDisabled == (bEnable != FALSE))
        SendMessageW(hWnd, WM_ENABLE, bEnable != FALSE, 0);
    return bWasDisabled;
}

BOOL WINAPI IsWindowEnabled(HWND hWnd) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    return system.Find(hWnd) != nullptr && !system.HasStyle(hWnd, WS_DISABLED);
}

BOOL WINAPI ShowWindow(HWND hWnd, int nCommand) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    SWindow* pWindow = system.Find(hWnd);
    if (pWindow == nullptr)
        return Fail(ERROR_INVALID_WINDOW_HANDLE, FALSE);
    const bool bWasVisible = (pWindow->nStyle & WS_VISIBLE) != 0;
    switch (nCommand) {
    case SW_HIDE:
        pWindow->nStyle &= ~WS_VISIBLE;
        break;
    case SW_MINIMIZE:
    case SW_SHOWMINIMIZED:
        pWindow->nStyle |= WS_VISIBLE | WS_MINIMIZE;
        break;
    case SW_RESTORE:
    case SW_SHOWNORMAL:
        pWindow->nStyle = (pWindow->nStyle | WS_VISIBLE) & ~WS_MINIMIZE;
        break;
    default:
        pWindow->nStyle |= WS_VISIBLE;
        break;
    }
    return bWasVisible;
}

BOOL WINAPI IsWindowVisible(HWND hWnd) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    // Visible means: the window and all windows around it, up to the screen (which HWND_MESSAGE never reaches).
    for (const SWindow* pWindow = system.Find(hWnd); pWindow != nullptr && (pWindow->nStyle & WS_VISIBLE) != 0;
         pWindow = system.Find(pWindow->hParent)) {
        if (pWindow->hParent == nullptr)
            return TRUE;
    }
    return FALSE;
}

BOOL WINAPI IsIconic(HWND hWnd) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    return system.HasStyle(hWnd, WS_MINIMIZE);
}

// ---- Messages -------------------------------------------------------------------------------------------------------

BOOL WINAPI PostMessageW(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    SWindowSystem& system = System();
    {
        const std::lock_guard lock(system.mutex);
        if (hWnd != nullptr && system.Find(hWnd) == nullptr)
            return Fail(ERROR_INVALID_WINDOW_HANDLE, FALSE);
        if (system.queue.size() >= g_nQueueLimit)
            return Fail(ERROR_NOT_ENOUGH_QUOTA, FALSE);
        system.queue.push_back(MSG{hWnd, nMessage, wParam, lParam, GetTickCount(), {0, 0}});
    }
    system.posted.notify_all();
    return TRUE;
}

LRESULT WINAPI SendMessageW(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    SWindowSystem& system = System();
    WNDPROC pfnWindowProc = nullptr;
    {
        const std::lock_guard lock(system.mutex);
        const SWindow* pWindow = system.Find(hWnd);
        if (pWindow == nullptr)
            return Fail<LRESULT>(ERROR_INVALID_WINDOW_HANDLE, 0);
        pfnWindowProc = pWindow->pfnWindowProc;
    }
    return pfnWindowProc(hWnd, nMessage, wParam, lParam);
}

void WINAPI PostQuitMessage(int nExitCode) {
    SWindowSystem& system = System();
    {
        const std::lock_guard lock(system.mutex);
        system.nQuitCode = nExitCode;
    }
    system.posted.notify_all();
}

BOOL WINAPI PeekMessageW(LPMSG pMsg, HWND hWnd, UINT nFilterMin, UINT nFilterMax, UINT nRemove) {
    SWindowSystem& system = System();
    const std::lock_guard lock(system.mutex);
    if (hWnd != nullptr && system.Find(hWnd) == nullptr)
        return Fail(ERROR_INVALID_WINDOW_HANDLE, FALSE);
    return TakeMessage(system, pMsg, hWnd, nFilterMin, nFilterMax, (nRemove & PM_REMOVE) != 0);
}

BOOL WINAPI GetMessageW(LPMSG pMsg, HWND hWnd, UINT nFilterMin, UINT nFilterMax) {
    SWindowSystem& system = System();
    std::unique_lock lock(system.mutex);
    if (hWnd != nullptr && system.Find(hWnd) == nullptr)
        return Fail(ERROR_INVALID_WINDOW_HANDLE, -1);
    system.posted.wait(lock, [&] { return TakeMessage(system, pMsg, hWnd, nFilterMin, nFilterMax, true); });
    return pMsg->message != WM_QUIT;
}

BOOL WINAPI TranslateMessage(const MSG*) {
    return FALSE; // no key messages arise here, so none is translated
}

LRESULT WINAPI DispatchMessageW(const MSG* pMsg) {
    return pMsg->hwnd == nullptr ? 0 : SendMessageW(pMsg->hwnd, pMsg->message, pMsg->wParam, pMsg->lParam);
}
