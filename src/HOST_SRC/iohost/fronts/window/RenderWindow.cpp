#include "fronts/window/RenderWindow.h"

#include "base/Network.h"

#include <boost/asio/signal_set.hpp>

#include <algorithm>
#include <csignal>
#include <deque>
#include <iostream>
#include <sstream>

#include "base/Caught.h"
#include "base/FrameTimer.h"
#include "base/OutputLines.h"
#include "base/Platform.h"
#include "fronts/terminal/TerminalLines.h"
#include "fronts/window/WindowInput.h"
#include "network/Peers.h"
#include "session/Session.h"

namespace {

constexpr wchar_t WINDOW_CLASS[] = L"iohost render window";
constexpr UINT_PTR MODAL_TIMER = 1;

/// Joins the window, the frames and the session: one thread, one loop.
class CRenderWindow {
public:
    CRenderWindow(CSession& session, const SWindowOptions& options)
        : m_session(session), m_held(session.Held().Open()), m_fFps(options.fFps),
          m_terminal(session, [this](const std::string& strLines) { Show(strLines); }),
          m_signals(session.Peers().Context(), SIGINT, SIGTERM, TERMINAL_SIGNAL) {
        WNDCLASSW windowClass = {};
        windowClass.style = CS_HREDRAW | CS_VREDRAW;
        windowClass.lpfnWndProc = WindowProcedure;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.hCursor = LoadCursorW(nullptr, reinterpret_cast<LPCWSTR>(IDC_ARROW));
        windowClass.lpszClassName = WINDOW_CLASS;
        RegisterClassW(&windowClass); // if this fails, so does CreateWindowExW
        RECT area = {0, 0, options.nWidth, options.nHeight};
        AdjustWindowRect(&area, WS_OVERLAPPEDWINDOW, FALSE);
        m_hWnd = CreateWindowExW(0, WINDOW_CLASS, L"iohost", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                                 area.right - area.left, area.bottom - area.top, nullptr, nullptr,
                                 windowClass.hInstance, this);
        if (m_hWnd != nullptr) {
            m_session.MainWindow().Show(m_hWnd);
        }
    }

    ~CRenderWindow() {
        m_session.MainWindow().Show(nullptr);
        if (m_hWnd != nullptr) {
            DestroyWindow(m_hWnd);
        }
        UnregisterClassW(WINDOW_CLASS, GetModuleHandleW(nullptr));
    }

    bool IsOpen() const { return m_hWnd != nullptr; }

    void Run() {
        ShowWindow(m_hWnd, SW_SHOWNORMAL);
        Frame(); // nodes take items once they have been evaluated
        m_session.Peers().RunAlways();
        if (const unsigned short nPort = ConfiguredBroadcastPort(); nPort != 0) {
            m_session.Peers().KeepReceivingBroadcasts(nPort);
        }
        m_signals.async_wait([this](const error_code& error, int) { m_bEnding = m_bEnding || !error; });
        m_output.Print("iohost: the window is open\n");

        m_tStart = steady_clock::now();
        m_tNext = m_tStart;
        while (!m_bEnding) {
            HandleMessages();
            Advance();
            const auto rest = std::chrono::ceil<std::chrono::milliseconds>(m_tNext - steady_clock::now());
            // Messages end the wait, items of the network don't.
            MsgWaitForMultipleObjectsEx(0, nullptr, static_cast<DWORD>(std::clamp<long long>(rest.count(), 0, 10)),
                                        QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        }
        m_session.CloseConnection(m_held, "the window closed");
    }

private:
    static LRESULT CALLBACK WindowProcedure(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
        if (nMessage == WM_NCCREATE) {
            const auto* pCreate = reinterpret_cast<const CREATESTRUCTW*>(lParam);
            SetWindowLongPtrW(hWnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(pCreate->lpCreateParams));
        }
        auto* pWindow = reinterpret_cast<CRenderWindow*>(GetWindowLongPtrW(hWnd, GWLP_USERDATA));
        return pWindow != nullptr && pWindow->m_hWnd != nullptr ? pWindow->OnMessage(nMessage, wParam, lParam)
                                                                : DefWindowProcW(hWnd, nMessage, wParam, lParam);
    }

    LRESULT OnMessage(UINT nMessage, WPARAM wParam, LPARAM lParam) {
        constexpr WPARAM COMMAND = 0xFFF0; // the lower bits are the system's
        if (m_input.OnMessage(m_hWnd, nMessage, wParam, lParam)) {
            return 0;
        }
        switch (nMessage) {
        case WM_CLOSE:
            m_bEnding = true;
            return 0;
        case WM_SYSCOMMAND:
            if ((wParam & COMMAND) == SC_KEYMENU) {
                return 0; // Alt and F10 are keys like others here
            }
            break;
        // While the window is moved, sized or its menu is open, the system runs a message loop of its own.
        case WM_ENTERSIZEMOVE:
        case WM_ENTERMENULOOP:
            SetTimer(m_hWnd, MODAL_TIMER, USER_TIMER_MINIMUM, nullptr);
            break;
        case WM_EXITSIZEMOVE:
        case WM_EXITMENULOOP:
            KillTimer(m_hWnd, MODAL_TIMER);
            break;
        case WM_TIMER:
            Advance();
            return 0;
        case WM_ERASEBKGND:
            return 1; // painted as a whole
        case WM_PAINT:
            Paint();
            return 0;
        default:
            break;
        }
        return DefWindowProcW(m_hWnd, nMessage, wParam, lParam);
    }

    void HandleMessages() {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            DispatchMessageW(&message);
            const bool bKey = message.message == WM_KEYDOWN || message.message == WM_KEYUP ||
                              message.message == WM_SYSKEYDOWN || message.message == WM_SYSKEYUP;
            if (bKey) {
                // Each of these messages changes the keyboard's state, which nodes read when they are evaluated. A
                // frame right after each keeps them from missing one when several come between two frames.
                HandleInput();
                Frame();
            }
        }
    }

    /// What waits is handled, and a frame runs when it's due.
    void Advance() {
        HandleInput();
        HandleNetwork();
        if (steady_clock::now() >= m_tNext) {
            Frame();
            m_tNext = NextFrameTime(m_tStart, m_fFps, steady_clock::now());
        }
    }

    void HandleInput() {
        for (const Command& command : m_input.TakeCommands()) {
            m_session.Do(command, {.pHeld = &m_held});
            InvalidateRect(m_hWnd, nullptr, FALSE);
        }
    }

    /// For a few milliseconds at most: items may come without end.
    void HandleNetwork() {
        asio::io_context& context = m_session.Peers().Context();
        const auto tEnd = steady_clock::now() + std::chrono::milliseconds(5);
        context.restart();
        RunLoop([&] {
            while (steady_clock::now() < tEnd && context.poll_one() > 0) {
            }
        });
    }

    void Frame() {
        m_session.Do(SFrameCommand{.bOutputs = false});
        m_terminal.PrintOutputs(m_outputs.Take(m_session.Scene()));
    }

    /// What is printed goes to the terminal and into the window.
    void Show(const std::string& strLines) {
        constexpr size_t MOST_LINES = 200;
        m_output.Print(strLines);
        std::istringstream lines(strLines);
        for (std::string strLine; std::getline(lines, strLine);) {
            m_lines.push_back(FromUtf8(strLine));
        }
        while (m_lines.size() > MOST_LINES) {
            m_lines.pop_front();
        }
        InvalidateRect(m_hWnd, nullptr, FALSE);
    }

    void Paint() {
        PAINTSTRUCT paint;
        const HDC hWindow = BeginPaint(m_hWnd, &paint);
        RECT area = {};
        GetClientRect(m_hWnd, &area);
        // Into a picture first, so that nothing flickers.
        const HDC hContext = CreateCompatibleDC(hWindow);
        const HBITMAP hPicture = CreateCompatibleBitmap(hWindow, area.right, area.bottom);
        const HGDIOBJ hBefore = SelectObject(hContext, hPicture);
        PaintOn(hContext, area);
        BitBlt(hWindow, 0, 0, area.right, area.bottom, hContext, 0, 0, SRCCOPY);
        SelectObject(hContext, hBefore);
        DeleteObject(hPicture);
        DeleteDC(hContext);
        EndPaint(m_hWnd, &paint);
    }

    void PaintOn(HDC hContext, const RECT& area) const {
        constexpr COLORREF INK = RGB(200, 210, 220);
        constexpr COLORREF PRESSED = RGB(240, 120, 60);
        constexpr int MARGIN = 8;
        constexpr int LINE_HEIGHT = 18;
        constexpr int REACH = 12; // of the mark at the pointer
        FillRect(hContext, &area, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
        SetBkMode(hContext, TRANSPARENT);
        SelectObject(hContext, GetStockObject(DEFAULT_GUI_FONT));
        SetTextColor(hContext, INK);
        int y = area.bottom - MARGIN;
        for (auto line = m_lines.rbegin(); line != m_lines.rend() && y > 0; ++line) {
            y -= LINE_HEIGHT;
            TextOutW(hContext, MARGIN, y, line->GetString(), line->GetLength());
        }
        if (m_input.IsInside()) {
            const auto [x, yPlace] = m_input.Place();
            SelectObject(hContext, GetStockObject(DC_PEN));
            SetDCPenColor(hContext, m_input.IsPressed() ? PRESSED : INK);
            MoveToEx(hContext, x - REACH, yPlace, nullptr);
            LineTo(hContext, x + REACH, yPlace);
            MoveToEx(hContext, x, yPlace - REACH, nullptr);
            LineTo(hContext, x, yPlace + REACH);
        }
    }

    CSession& m_session;
    CHeldInput& m_held;
    const double m_fFps;
    FrameTime m_tStart; ///< of the frames
    FrameTime m_tNext;  ///< when the next one is due
    HWND m_hWnd = nullptr;
    CWindowInput m_input;
    COutputLines m_output{TerminalOutput()};
    CTerminalLines m_terminal;
    COutputChanges m_outputs;
    std::deque<CString> m_lines; ///< what was printed last
    asio::signal_set m_signals;
    bool m_bEnding = false;
};

} // namespace

int RunRenderWindow(CSession& session, const SWindowOptions& options) {
    SetProcessDPIAware(); // pixels are pixels
    CRenderWindow window(session, options);
    if (!window.IsOpen()) {
        std::cerr << "iohost: --window: the system gives no window\n";
        return 1;
    }
    window.Run();
    return 0;
}
