// Turns the messages of a window into commands, as the page does with a browser's events.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <afxwin.h>

#include "session/Command.h"

class CWindowInput {
public:
    /// Whether the message is input; its result is 0 then. Commands gather until taken: messages may come within one.
    bool OnMessage(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam);

    std::vector<Command> TakeCommands() { return std::exchange(m_commands, {}); }

    /// Where the pointer is, and whether it's over the window and whether a button is down.
    POINT Place() const { return m_ptPlace; }
    bool IsInside() const { return m_bInside; }
    bool IsPressed() const { return m_nButtons != 0; }

private:
    void OnKeyDown(UINT nVirtualKey, LPARAM lParam);
    void OnKeyUp(LPARAM lParam);
    void OnFocusLost();
    void OnPlace(HWND hWnd, POINT ptPlace);
    void OnButton(HWND hWnd, int nEvent, unsigned nBit, bool bDown);
    void OnWheel(HWND hWnd, int nDelta, POINT ptScreen);
    void OnHover(HWND hWnd);
    void OnLeave(HWND hWnd);
    void OnCaptureLost(HWND hWnd);
    void OnDragEnded(HWND hWnd);

    void SendKey(int nEvent, const std::string& strText);
    void SendPointer(HWND hWnd, int nEvent);
    void Release(int nDevice, const char* pszReason);

    std::vector<Command> m_commands;
    std::map<unsigned, std::string> m_keys; ///< what is down, by place on the keyboard, with the text of its down
    POINT m_ptPlace = {};
    bool m_bInside = false;
    unsigned m_nButtons = 0; ///< a bit for each that is down
    int m_nWheel = 0;        ///< turned since the last whole notch
};
