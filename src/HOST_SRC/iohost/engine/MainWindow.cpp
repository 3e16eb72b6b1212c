#include "engine/MainWindow.h"

namespace {

/// The one application object of the process; the framework knows it from its construction on.
CWinApp& Application() {
    static CWinApp s_application(L"iohost");
    return s_application;
}

} // namespace

CMainWindow::CMainWindow(HWND hHidden) : m_hHidden(hHidden) {
    Show(nullptr);
    Set(true, true);
}

CMainWindow::~CMainWindow() {
    Application().m_pMainWnd = nullptr;
    m_window.Detach();
}

void CMainWindow::Set(bool bPresent, bool bEnabled) {
    m_window.EnableWindow(bEnabled ? TRUE : FALSE);
    Application().m_pMainWnd = bPresent ? &m_window : nullptr;
}

void CMainWindow::Show(HWND hWnd) {
    m_window.Detach();
    m_window.Attach(hWnd != nullptr ? hWnd : m_hHidden);
}
