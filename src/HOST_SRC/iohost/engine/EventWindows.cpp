#include "engine/EventWindows.h"

#include <memory>
#include <stdexcept>

#include "engine/ActivityLog.h"

namespace {

constexpr wchar_t EVENT_WINDOW_CLASS[] = L"iohost events";

} // namespace

CEventWindows::CEventWindows(CActivityLog& log)
    : m_log(log), m_nEventMsg(RegisterWindowMessageW(L"iohost general event")),
      m_nNotifyMsg(RegisterWindowMessageW(L"iohost node notification")) {
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = WindowProcedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = EVENT_WINDOW_CLASS;
    RegisterClassW(&windowClass); // a failure shows in the windows
    m_hEventWnd = CreateMessageWindow();
    m_hNotifyWnd = CreateMessageWindow();
    if (m_nEventMsg == 0 || m_nNotifyMsg == 0 || m_hEventWnd == nullptr || m_hNotifyWnd == nullptr) {
        throw std::runtime_error("the system gives no message window");
    }
}

CEventWindows::~CEventWindows() {
    Pump(); // events that still wait are owned by the host
    DestroyWindow(m_hNotifyWnd);
    DestroyWindow(m_hEventWnd);
    UnregisterClassW(EVENT_WINDOW_CLASS, GetModuleHandleW(nullptr));
}

void CEventWindows::Pump() {
    // Only these two: whatever else waits must not be handled in the middle of a request.
    MSG message;
    for (const UINT nMessage : {m_nEventMsg, m_nNotifyMsg}) {
        while (PeekMessageW(&message, nullptr, nMessage, nMessage, PM_REMOVE)) {
            DispatchMessageW(&message);
        }
    }
}

LRESULT CALLBACK CEventWindows::WindowProcedure(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    auto* pWindows = reinterpret_cast<CEventWindows*>(GetWindowLongPtrW(hWnd, GWLP_USERDATA));
    return pWindows != nullptr ? pWindows->OnMessage(hWnd, nMessage, wParam, lParam)
                               : DefWindowProcW(hWnd, nMessage, wParam, lParam);
}

LRESULT CEventWindows::OnMessage(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage == m_nEventMsg) {
        const std::unique_ptr<SQOREvent> pEvent(reinterpret_cast<SQOREvent*>(lParam));
        if (pEvent != nullptr) {
            m_log.OnEventMessage(*pEvent, wParam);
        }
        return 0;
    }
    if (nMessage == m_nNotifyMsg) {
        m_log.OnNotifyMessage(wParam, lParam);
        return 0;
    }
    return DefWindowProcW(hWnd, nMessage, wParam, lParam);
}

HWND CEventWindows::CreateMessageWindow() {
    const HWND hWnd = CreateWindowExW(0, EVENT_WINDOW_CLASS, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                      GetModuleHandleW(nullptr), nullptr);
    if (hWnd != nullptr) {
        SetWindowLongPtrW(hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    }
    return hWnd;
}
