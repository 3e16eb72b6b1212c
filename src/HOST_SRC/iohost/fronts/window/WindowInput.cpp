#include "fronts/window/WindowInput.h"

#include <utility>

#include <windowsx.h>

#include "HostSetup.h"
#include "host/Codes.h"

namespace {

/// What a message says of a mouse button.
struct SButtonMessage {
    UINT nMessage;
    int nEvent;
    unsigned nBit; ///< of the button, among those that are down
    bool bDown;
};

constexpr SButtonMessage BUTTON_MESSAGES[] = {
    {WM_LBUTTONDOWN, EVENT_LEFT_DOWN, 1, true},   {WM_LBUTTONUP, EVENT_LEFT_UP, 1, false},
    {WM_MBUTTONDOWN, EVENT_MIDDLE_DOWN, 2, true}, {WM_MBUTTONUP, EVENT_MIDDLE_UP, 2, false},
    {WM_RBUTTONDOWN, EVENT_RIGHT_DOWN, 4, true},  {WM_RBUTTONUP, EVENT_RIGHT_UP, 4, false},
};

/// The keys that make no character, as browsers call them.
struct SKeyName {
    UINT nVirtualKey;
    const char* pszName;
};

constexpr SKeyName KEY_NAMES[] = {
    {VK_BACK, "Backspace"},
    {VK_TAB, "Tab"},
    {VK_CLEAR, "Clear"},
    {VK_RETURN, "Enter"},
    {VK_SHIFT, "Shift"},
    {VK_CONTROL, "Control"},
    {VK_MENU, "Alt"},
    {VK_PAUSE, "Pause"},
    {VK_CAPITAL, "CapsLock"},
    {VK_ESCAPE, "Escape"},
    {VK_PRIOR, "PageUp"},
    {VK_NEXT, "PageDown"},
    {VK_END, "End"},
    {VK_HOME, "Home"},
    {VK_LEFT, "ArrowLeft"},
    {VK_UP, "ArrowUp"},
    {VK_RIGHT, "ArrowRight"},
    {VK_DOWN, "ArrowDown"},
    {VK_SNAPSHOT, "PrintScreen"},
    {VK_INSERT, "Insert"},
    {VK_DELETE, "Delete"},
    {VK_LWIN, "Meta"},
    {VK_RWIN, "Meta"},
    {VK_APPS, "ContextMenu"},
    {VK_NUMLOCK, "NumLock"},
    {VK_SCROLL, "ScrollLock"},
};

/// Where a key is on the keyboard: its scan code, with the bit that tells the extended keys.
unsigned PlaceOfKey(LPARAM lParam) {
    return static_cast<unsigned>(lParam >> 16) & 0x1FF;
}

/// The character that the key makes under the present layout and modifiers, or the key's name.
std::string KeyText(UINT nVirtualKey, unsigned nPlace) {
    for (const SKeyName& key : KEY_NAMES) {
        if (key.nVirtualKey == nVirtualKey) {
            return key.pszName;
        }
    }
    if (nVirtualKey >= VK_F1 && nVirtualKey <= VK_F24) {
        return "F" + std::to_string(nVirtualKey - VK_F1 + 1);
    }
    BYTE state[256];
    GetKeyboardState(state);
    if ((state[VK_MENU] & 0x80) == 0) {
        state[VK_CONTROL] = 0; // Ctrl alone would make control characters
    }
    wchar_t szText[8];
    const int nLength = ToUnicode(nVirtualKey, nPlace & 0xFF, state, szText, static_cast<int>(std::size(szText)), 0);
    return nLength > 0 ? ToUtf8(szText, nLength) : nLength < 0 ? "Dead" : "Unidentified";
}

void TrackPointer(HWND hWnd) {
    constexpr DWORD HOVER_TIME = 400; // milliseconds of rest
    TRACKMOUSEEVENT tracking = {sizeof(tracking), TME_LEAVE | TME_HOVER, hWnd, HOVER_TIME};
    TrackMouseEvent(&tracking);
}

} // namespace

bool CWindowInput::OnMessage(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    const POINT ptPlace = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
    switch (nMessage) {
    case WM_SYSKEYDOWN:
        if (wParam == VK_F4) {
            return false; // closes the window
        }
        [[fallthrough]];
    case WM_KEYDOWN:
        OnKeyDown(static_cast<UINT>(wParam), lParam);
        return true;
    case WM_KEYUP:
    case WM_SYSKEYUP:
        OnKeyUp(lParam);
        return true;
    case WM_KILLFOCUS:
        OnFocusLost();
        return true;
    case WM_MOUSEMOVE:
        OnPlace(hWnd, ptPlace);
        return true;
    case WM_MOUSEWHEEL:
        OnWheel(hWnd, GET_WHEEL_DELTA_WPARAM(wParam), ptPlace);
        return true;
    case WM_MOUSEHOVER:
        OnHover(hWnd);
        return true;
    case WM_MOUSELEAVE:
        OnLeave(hWnd);
        return true;
    case WM_CAPTURECHANGED:
        OnCaptureLost(hWnd);
        return true;
    default:
        for (const SButtonMessage& button : BUTTON_MESSAGES) {
            if (button.nMessage == nMessage) {
                OnPlace(hWnd, ptPlace);
                OnButton(hWnd, button.nEvent, button.nBit, button.bDown);
                return true;
            }
        }
        return false;
    }
}

void CWindowInput::OnKeyDown(UINT nVirtualKey, LPARAM lParam) {
    constexpr LPARAM WAS_DOWN = 1 << 30;
    const unsigned nPlace = PlaceOfKey(lParam);
    if ((lParam & WAS_DOWN) != 0 && !m_keys.contains(nPlace)) {
        return; // it went down in another window
    }
    const std::string strText = KeyText(nVirtualKey, nPlace);
    m_keys[nPlace] = strText;
    SendKey(EVENT_KEY_DOWN, strText);
}

void CWindowInput::OnKeyUp(LPARAM lParam) {
    // The up has the text of the down, though Shift may have been let go in between.
    if (const auto key = m_keys.extract(PlaceOfKey(lParam))) {
        SendKey(EVENT_KEY_UP, key.mapped());
    }
}

void CWindowInput::OnFocusLost() {
    if (!m_keys.empty()) {
        m_keys.clear();
        Release(DEVICE_KEYBOARD, "the window lost the focus");
    }
}

void CWindowInput::OnPlace(HWND hWnd, POINT ptPlace) {
    const bool bEnters = !m_bInside;
    if (!bEnters && ptPlace.x == m_ptPlace.x && ptPlace.y == m_ptPlace.y) {
        return; // the system repeats itself when something but the pointer moves
    }
    m_bInside = true;
    m_ptPlace = ptPlace;
    TrackPointer(hWnd);
    if (bEnters) {
        SendPointer(hWnd, EVENT_ENTER_WINDOW);
    }
    SendPointer(hWnd, EVENT_POINTER_SAMPLE);
}

void CWindowInput::OnButton(HWND hWnd, int nEvent, unsigned nBit, bool bDown) {
    if (bDown) {
        m_nButtons |= nBit;
        SetFocus(hWnd);
        SetCapture(hWnd); // a drag that ends outside still brings its release here
        SendPointer(hWnd, nEvent);
    } else if ((m_nButtons & nBit) != 0) { // it went down here
        m_nButtons &= ~nBit;
        SendPointer(hWnd, nEvent);
        if (m_nButtons == 0) {
            ReleaseCapture();
            OnDragEnded(hWnd);
        }
    }
}

void CWindowInput::OnWheel(HWND hWnd, int nDelta, POINT ptScreen) {
    ScreenToClient(hWnd, &ptScreen);
    OnPlace(hWnd, ptScreen);
    for (m_nWheel += nDelta; m_nWheel >= WHEEL_DELTA; m_nWheel -= WHEEL_DELTA) {
        SendPointer(hWnd, EVENT_WHEEL_UP);
    }
    for (; m_nWheel <= -WHEEL_DELTA; m_nWheel += WHEEL_DELTA) {
        SendPointer(hWnd, EVENT_WHEEL_DOWN);
    }
}

/// Comes once each time that the pointer rests: the next movement asks for it again.
void CWindowInput::OnHover(HWND hWnd) {
    if (m_bInside) {
        SendPointer(hWnd, EVENT_HOVER);
    }
}

/// While a button is down the pointer stays the window's, wherever it goes.
void CWindowInput::OnLeave(HWND hWnd) {
    if (m_nButtons == 0 && std::exchange(m_bInside, false)) {
        SendPointer(hWnd, EVENT_LEAVE_WINDOW);
    }
}

void CWindowInput::OnCaptureLost(HWND hWnd) {
    if (std::exchange(m_nButtons, 0) != 0) {
        Release(DEVICE_POINTER, "the pointer was taken away");
        OnDragEnded(hWnd);
    }
}

/// A leave during the drag was ignored, or never reported: see where the pointer is now.
void CWindowInput::OnDragEnded(HWND hWnd) {
    RECT area = {};
    GetClientRect(hWnd, &area);
    if (PtInRect(&area, m_ptPlace)) {
        TrackPointer(hWnd);
    } else {
        OnLeave(hWnd);
    }
}

void CWindowInput::SendKey(int nEvent, const std::string& strText) {
    SKeyEventData key;
    key.m_strText = FromUtf8(strText);
    m_commands.push_back(SEventCommand{.handle = {}, .nDevice = DEVICE_KEYBOARD, .nEvent = nEvent, .payload = key});
}

void CWindowInput::SendPointer(HWND hWnd, int nEvent) {
    // Relative units: the surface is 1000 high, its origin bottom left.
    RECT area = {};
    GetClientRect(hWnd, &area);
    const double fScale = area.bottom > 0 ? 1000.0 / area.bottom : 0;
    const SQORMouseData sample(0, static_cast<float>(m_ptPlace.x * fScale),
                               static_cast<float>((area.bottom - m_ptPlace.y) * fScale),
                               CPoint(m_ptPlace.x, m_ptPlace.y), 0);
    m_commands.push_back(SEventCommand{.handle = {}, .nDevice = DEVICE_POINTER, .nEvent = nEvent, .payload = sample});
}

void CWindowInput::Release(int nDevice, const char* pszReason) {
    m_commands.push_back(SReleaseHeldCommand{.strReason = pszReason, .filter = {.device = nDevice, .identity = {}}});
}
