#include "engine/EventWindow.h"

#include <memory>
#include <stdexcept>

#include "engine/ActivityLog.h"

namespace {

constexpr wchar_t EVENT_WINDOW_CLASS[] = L"iohost events";

} // namespace

CEventWindow::CEventWindow(CActivityLog& log)
    : m_log(log), m_nEventMsg(RegisterWindowMessageW(L"iohost general event")),
      m_nNotifyMsg(RegisterWindowMessageW(L"iohost node notification")) {
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = WindowProcedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = EVENT_WINDOW_CLASS;
    RegisterClassW(&windowClass); // if this fails, so does CreateWindowExW
    m_hWnd = CreateWindowExW(0, EVENT_WINDOW_CLASS, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                             GetModuleHandleW(nullptr), nullptr);
    if (m_nEventMsg == 0 || m_nNotifyMsg == 0 || m_hWnd == nullptr) {
        throw std::runtime_error("the system gives no message window");
    }
    SetWindowLongPtrW(m_hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

CEventWindow::~CEventWindow() {
    Pump(); // events that still wait are owned by the host
    DestroyWindow(m_hWnd);
    UnregisterClassW(EVENT_WINDOW_CLASS, GetModuleHandleW(nullptr));
}

void CEventWindow::Pump() {
    MSG message;
    while (PeekMessageW(&message, m_hWnd, 0, 0, PM_REMOVE)) {
        DispatchMessageW(&message);
    }
}

LRESULT CALLBACK CEventWindow::WindowProcedure(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    auto* pWindow = reinterpret_cast<CEventWindow*>(GetWindowLongPtrW(hWnd, GWLP_USERDATA));
    return pWindow != nullptr && pWindow->Take(nMessage, wParam, lParam)
               ? 0
               : DefWindowProcW(hWnd, nMessage, wParam, lParam);
}

/// False for messages that nodes don't post.
bool CEventWindow::Take(UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage == m_nEventMsg) {
        if (std::unique_ptr<SQOREvent> pEvent(reinterpret_cast<SQOREvent*>(lParam)); pEvent != nullptr) {
            m_log.OnEventMessage(std::move(pEvent), wParam);
        }
    } else if (nMessage == m_nNotifyMsg) {
        m_log.OnNotifyMessage(wParam, lParam);
    } else {
        return false;
    }
    return true;
}
