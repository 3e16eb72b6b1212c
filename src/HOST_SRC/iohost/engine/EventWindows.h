// The two message-only windows that nodes post to, and the queue behind them.
#pragma once

#include <afxwin.h>

class CActivityLog;

class CEventWindows {
public:
    /// Messages go to the collector, which must outlive the windows. Throws std::runtime_error when the system refuses
    /// a window.
    explicit CEventWindows(CActivityLog& log);
    ~CEventWindows();

    CEventWindows(const CEventWindows&) = delete;
    CEventWindows& operator=(const CEventWindows&) = delete;

    HWND EventWindow() const { return m_hEventWnd; }
    UINT EventMessage() const { return m_nEventMsg; }
    HWND NotifyWindow() const { return m_hNotifyWnd; }
    UINT NotifyMessage() const { return m_nNotifyMsg; }

    /// Handle what nodes posted.
    void Pump();

private:
    static LRESULT CALLBACK WindowProcedure(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);
    LRESULT OnMessage(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);

    HWND CreateMessageWindow();

    CActivityLog& m_log;
    UINT m_nEventMsg;
    UINT m_nNotifyMsg;
    HWND m_hEventWnd;
    HWND m_hNotifyWnd;
};
