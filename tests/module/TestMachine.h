// The machine around the module as tests set it: the keyboard's state, the tick count, the application's main window.
#pragma once

#include <array>

#include <afxwin.h>

/// The keyboard state that GetKeyState answers from. All keys are up and nothing is toggled in the beginning and,
/// again, in the end.
class TestKeyboard {
public:
    TestKeyboard() { Apply(); }
    ~TestKeyboard() { ReleaseAll(); }

    TestKeyboard(const TestKeyboard&) = delete;
    TestKeyboard& operator=(const TestKeyboard&) = delete;

    void Hold(int nVirtualKey) { Set(nVirtualKey, HELD, true); }
    void Release(int nVirtualKey) { Set(nVirtualKey, HELD, false); }
    void Toggle(int nVirtualKey, bool bOn) { Set(nVirtualKey, TOGGLED, bOn); }
    void HoldAll();
    void ReleaseAll();

private:
    static constexpr BYTE HELD = 0x80;
    static constexpr BYTE TOGGLED = 0x01;

    void Set(int nVirtualKey, BYTE nBit, bool bOn);
    void Apply();

    std::array<BYTE, 256> m_state = {};
};

/// Stops the tick count that the module reads, for as long as the object lives.
class TestClock {
public:
    explicit TestClock(DWORD nTick = 0) { Set(nTick); }
    ~TestClock();

    TestClock(const TestClock&) = delete;
    TestClock& operator=(const TestClock&) = delete;

    void Set(DWORD nTick);
};

/// The host's application, with a main window that is there and takes input. It says itself which window that is.
class TestApplication {
public:
    TestApplication();
    ~TestApplication();

    void ShowMainWindow(bool bPresent) { m_application.m_pShown = bPresent ? &m_window : nullptr; }
    void EnableMainWindow(bool bEnable) { m_window.EnableWindow(bEnable ? TRUE : FALSE); }

private:
    struct CApplication : CWinApp {
        CWnd* GetMainWnd() override { return m_pShown; }
        CWnd* m_pShown = nullptr;
    };

    CApplication m_application;
    CWnd m_window;
};
