// The framework's user-interface part: application, windows and extension modules. A subset of the framework's header
// of this name, for compilers that do not have it.
#pragma once

#include <afx.h>
#include <afxcoll.h>
#include <atltypes.h>

// Refers to a system window and owns it: the destructor destroys a window that is still attached. The operations must
// not be called without a window (m_hWnd null), GetSafeHwnd excepted.
class COMPAT_API CWnd {
public:
    CWnd() = default;
    ~CWnd();
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    // Takes over a window; FALSE for null. Detach gives it back.
    BOOL Attach(HWND hWnd);
    HWND Detach();
    HWND GetSafeHwnd() const { return m_hWnd; }

    BOOL IsWindowEnabled() const;
    BOOL EnableWindow(BOOL bEnable = TRUE);

    HWND m_hWnd = nullptr;
};

// The application. The program makes one object, which registers itself; the last one made counts.
class COMPAT_API CWinApp {
public:
    // The name is taken for compatibility.
    explicit CWinApp(LPCTSTR pszAppName = nullptr);
    virtual ~CWinApp();
    CWinApp(const CWinApp&) = delete;
    CWinApp& operator=(const CWinApp&) = delete;

    // The window that stands for the program: m_pMainWnd unless overridden. May be null.
    virtual CWnd* GetMainWnd();

    CWnd* m_pMainWnd = nullptr; // not owned
};

// Null while there is no application object.
COMPAT_API CWinApp* AfxGetApp();

#include <afxdll_.h>
