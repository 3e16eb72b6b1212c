// The host application and its main window, as nodes ask the framework for them.
#pragma once

#include <afxwin.h>

#include <boost/core/noncopyable.hpp>

/// There is one at a time. The window starts present and enabled; the destructor takes it away.
class CMainWindow : boost::noncopyable {
public:
    /// hHidden is the main window while no window that can be seen is. It must outlive this object.
    explicit CMainWindow(HWND hHidden);
    ~CMainWindow();

    /// Whether the application has a main window, and whether that is enabled.
    void Set(bool bPresent, bool bEnabled);

    /// Let a window that can be seen be the main window; it stays the caller's. Null: the hidden one again.
    void Show(HWND hWnd);

private:
    CWnd m_window;
    const HWND m_hHidden;
};
