#include "engine/MainWindow.h"

namespace {

constexpr wchar_t WINDOW_CLASS[] = L"iohost main window";

/// The one application object of the process; the framework knows it from its construction on.
CWinApp& Application() {
    static CWinApp s_application(L"iohost");
    return s_application;
}

} // namespace

CMainWindow::CMainWindow() {
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = WINDOW_CLASS;
    RegisterClassW(&windowClass);
    m_hHiddenWnd = CreateWindowExW(0, WINDOW_CLASS, L"iohost", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                   GetModuleHandleW(nullptr), nullptr);
    Show(nullptr);
    Set(true, true);
}

CMainWindow::~CMainWindow() {
    Application().m_pMainWnd = nullptr;
    m_window.Detach();
    DestroyWindow(m_hHiddenWnd);
    UnregisterClassW(WINDOW_CLASS, GetModuleHandleW(nullptr));
}

void CMainWindow::Set(bool bPresent, bool bEnabled) {
    if (m_window.GetSafeHwnd() != nullptr) {
        m_window.EnableWindow(bEnabled ? TRUE : FALSE);
    }
    Application().m_pMainWnd = bPresent ? &m_window : nullptr;
}

void CMainWindow::Show(HWND hWnd) {
    m_window.Detach();
    m_window.Attach(hWnd != nullptr ? hWnd : m_hHiddenWnd);
}
