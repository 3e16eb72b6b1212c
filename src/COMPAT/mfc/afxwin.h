// The framework's user-interface part: application, threads, windows and extension modules. A subset of the framework's
// header of this name, for compilers that do not have it.
#pragma once

#include <afx.h>
#include <afxcoll.h>
#include <atltypes.h>

class COMPAT_API CCmdTarget : public CObject {
    DECLARE_DYNAMIC(CCmdTarget)
public:
    CCmdTarget();
    ~CCmdTarget() override;
};

// Refers to a system window and owns it: the destructor destroys a window that is still attached. The operations must
// not be called without a window (m_hWnd null), GetSafeHwnd excepted.
class COMPAT_API CWnd : public CCmdTarget {
    DECLARE_DYNAMIC(CWnd)
public:
    CWnd();
    explicit CWnd(HWND hWnd);
    ~CWnd() override;

    // Takes over a window; FALSE for null. Detach gives it back.
    BOOL Attach(HWND hWnd);
    HWND Detach();
    HWND GetSafeHwnd() const { return m_hWnd; }
    virtual BOOL DestroyWindow();

    BOOL IsWindowEnabled() const;
    BOOL EnableWindow(BOOL bEnable = TRUE);
    BOOL IsWindowVisible() const;
    BOOL IsIconic() const;
    BOOL ShowWindow(int nCommand);
    LRESULT SendMessage(UINT nMessage, WPARAM wParam = 0, LPARAM lParam = 0);
    BOOL PostMessage(UINT nMessage, WPARAM wParam = 0, LPARAM lParam = 0);

    HWND m_hWnd;
};

class COMPAT_API CWinThread : public CCmdTarget {
    DECLARE_DYNAMIC(CWinThread)
public:
    CWinThread();
    ~CWinThread() override;

    virtual BOOL InitInstance();
    virtual int ExitInstance();
    // The window that stands for the program; m_pMainWnd unless overridden. May be null.
    virtual CWnd* GetMainWnd();

    CWnd* m_pMainWnd; // not owned
};

// The application. The program makes one object, which registers itself; the last one made counts.
class COMPAT_API CWinApp : public CWinThread {
    DECLARE_DYNAMIC(CWinApp)
public:
    explicit CWinApp(LPCTSTR pszAppName = nullptr);
    ~CWinApp() override;

    BOOL InitInstance() override;
    int ExitInstance() override;

    HINSTANCE m_hInstance;
    CString m_strAppName;
};

// Null while there is no application object; AfxGetMainWnd also while it has no main window.
COMPAT_API CWinApp* AFXAPI AfxGetApp();
COMPAT_API CWinThread* AFXAPI AfxGetThread();
COMPAT_API CWnd* AFXAPI AfxGetMainWnd();

COMPAT_API HINSTANCE AFXAPI AfxGetInstanceHandle();
COMPAT_API HINSTANCE AFXAPI AfxGetResourceHandle();
COMPAT_API void AFXAPI AfxSetResourceHandle(HINSTANCE hInstance);
// The module that has the resource: the program itself, else the extension module registered last that has it, else the
// program.
COMPAT_API HINSTANCE AFXAPI AfxFindResourceHandle(LPCTSTR pszName, LPCTSTR pszType);

#include <afxdll_.h>
