// The message-only window that nodes post to, and the queue behind it.
#pragma once

#include <afxwin.h>

#include <boost/core/noncopyable.hpp>

class CActivityLog;

class CEventWindow : boost::noncopyable {
public:
    /// Messages go to the log, which must outlive the window. Throws std::runtime_error when the system gives none.
    explicit CEventWindow(CActivityLog& log);
    ~CEventWindow();

    HWND Handle() const { return m_hWnd; }
    UINT EventMessage() const { return m_nEventMsg; }
    UINT NotifyMessage() const { return m_nNotifyMsg; }

    /// Handle what nodes posted.
    void Pump();

private:
    static LRESULT CALLBACK WindowProcedure(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
    bool Take(UINT nMessage, WPARAM wParam, LPARAM lParam);

    CActivityLog& m_log;
    UINT m_nEventMsg;
    UINT m_nNotifyMsg;
    HWND m_hWnd;
};
