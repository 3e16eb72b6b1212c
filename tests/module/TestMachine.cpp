#include "TestMachine.h"

#include <stdexcept>

#include "SystemCalls.h"

void TestKeyboard::HoldAll() {
    for (BYTE& nState : m_state) {
        nState |= HELD;
    }
    Apply();
}

void TestKeyboard::ReleaseAll() {
    m_state = {};
    Apply();
}

void TestKeyboard::Set(int nVirtualKey, BYTE nBit, bool bOn) {
    BYTE& nState = m_state.at(static_cast<size_t>(nVirtualKey));
    nState = static_cast<BYTE>(bOn ? nState | nBit : nState & ~nBit);
    Apply();
}

void TestKeyboard::Apply() {
    SetKeyboardState(m_state.data());
}

TestClock::~TestClock() {
    StopTickCount(std::nullopt);
}

void TestClock::Set(DWORD nTick) {
    StopTickCount(nTick);
}

TestApplication::TestApplication() {
    const wchar_t* const pszClass = L"module_tests main window";
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = pszClass;
    RegisterClassW(&windowClass); // the class may be there already
    m_window.Attach(
        CreateWindowExW(0, pszClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, windowClass.hInstance, nullptr));
    if (m_window.GetSafeHwnd() == nullptr) {
        throw std::runtime_error("no main window");
    }
    EnableMainWindow(true);
    ShowMainWindow(true);
}

TestApplication::~TestApplication() {
    ShowMainWindow(false);
}
