// Windows, messages and keyboard. The expectations hold on Windows and on the Linux subset alike.

#include "CompatTest.h"

#include <chrono>
#include <thread>
#include <vector>

namespace {

constexpr const wchar_t* g_pszClass = L"MessagesTestWindow";

struct SReceived {
    UINT nMessage;
    WPARAM wParam;
    LPARAM lParam;
    bool operator==(const SReceived&) const = default;
};
std::vector<SReceived> g_received;

LRESULT CALLBACK RecordingProcedure(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    if (nMessage >= WM_USER) {
        g_received.push_back({nMessage, wParam, lParam});
        return 77;
    }
    return DefWindowProcW(hWnd, nMessage, wParam, lParam);
}

ATOM RegisterTestClass(const wchar_t* pszName) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = RecordingProcedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = pszName;
    return RegisterClassW(&windowClass);
}

HWND CreateMessageWindow(const wchar_t* pszClass) {
    return CreateWindowExW(0, pszClass, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, GetModuleHandleW(nullptr), nullptr);
}

class MessagesTest : public testing::Test {
protected:
    void SetUp() override {
        RegisterTestClass(g_pszClass);
        m_hWnd = CreateMessageWindow(g_pszClass);
        ASSERT_NE(m_hWnd, nullptr);
        g_received.clear();
    }
    void TearDown() override {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        }
        DestroyWindow(m_hWnd);
        UnregisterClassW(g_pszClass, GetModuleHandleW(nullptr));
    }

    HWND m_hWnd = nullptr;
};

} // namespace

TEST(RegisterWindowMessageTest, OneNameIsOneNumber) {
    const UINT nFirst = RegisterWindowMessageW(L"CompatTestFirst");
    const UINT nSecond = RegisterWindowMessageW(L"CompatTestSecond");
    EXPECT_GE(nFirst, 0xC000u);
    EXPECT_LE(nFirst, 0xFFFFu);
    EXPECT_NE(nFirst, nSecond);
    EXPECT_EQ(RegisterWindowMessageW(L"CompatTestFirst"), nFirst);
    EXPECT_EQ(RegisterWindowMessageW(L"COMPATTESTFIRST"), nFirst);
}

TEST_F(MessagesTest, PostedMessagesArriveInOrderWhenDispatched) {
    EXPECT_TRUE(PostMessageW(m_hWnd, WM_USER + 1, 1, 2));
    EXPECT_TRUE(PostMessageW(m_hWnd, WM_USER + 2, 3, 4));
    EXPECT_TRUE(g_received.empty());
    MSG message;
    while (PeekMessageW(&message, m_hWnd, 0, 0, PM_REMOVE))
        EXPECT_EQ(DispatchMessageW(&message), 77);
    EXPECT_EQ(g_received, (std::vector<SReceived>{{WM_USER + 1, 1, 2}, {WM_USER + 2, 3, 4}}));
}

TEST_F(MessagesTest, PeekingCanFilterMessages) {
    PostMessageW(m_hWnd, WM_USER + 1, 0, 0);
    PostMessageW(m_hWnd, WM_USER + 5, 0, 0);
    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, m_hWnd, WM_USER + 4, WM_USER + 6, PM_REMOVE));
    EXPECT_EQ(message.message, WM_USER + 5u);
    EXPECT_EQ(message.hwnd, m_hWnd);
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, WM_USER + 1u);
    EXPECT_FALSE(PeekMessageW(&message, m_hWnd, 0, 0, PM_REMOVE));
}

TEST_F(MessagesTest, UnknownWindowsAreRefused) {
    HWND hUnknown = reinterpret_cast<HWND>(0x7FFF0);
    EXPECT_FALSE(PostMessageW(hUnknown, WM_USER, 0, 0));
    EXPECT_FALSE(DestroyWindow(hUnknown));
    EXPECT_FALSE(EnableWindow(hUnknown, TRUE));
    EXPECT_EQ(SetWindowLongPtrW(hUnknown, GWLP_USERDATA, 1), 0);
    EXPECT_EQ(GetWindowLongPtrW(hUnknown, GWLP_USERDATA), 0);
    EXPECT_FALSE(IsWindowEnabled(hUnknown));
}

TEST_F(MessagesTest, ADestroyedWindowGetsNothingMore) {
    PostMessageW(m_hWnd, WM_USER + 1, 0, 0);
    EXPECT_TRUE(DestroyWindow(m_hWnd));
    MSG message;
    EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_USER, WM_USER + 10, PM_REMOVE));
    EXPECT_FALSE(PostMessageW(m_hWnd, WM_USER + 1, 0, 0));
}

TEST_F(MessagesTest, WindowsKeepTheirUserData) {
    EXPECT_EQ(GetWindowLongPtrW(m_hWnd, GWLP_USERDATA), 0);
    EXPECT_EQ(SetWindowLongPtrW(m_hWnd, GWLP_USERDATA, 42), 0);
    EXPECT_EQ(SetWindowLongPtrW(m_hWnd, GWLP_USERDATA, 43), 42);
    EXPECT_EQ(GetWindowLongPtrW(m_hWnd, GWLP_USERDATA), 43);
}

TEST_F(MessagesTest, ClassesAreRegisteredOnce) {
    EXPECT_EQ(RegisterTestClass(g_pszClass), 0);
    EXPECT_EQ(RegisterTestClass(L"MESSAGESTESTWINDOW"), 0);
    EXPECT_EQ(CreateMessageWindow(L"NoSuchClass"), nullptr);
    EXPECT_FALSE(UnregisterClassW(L"NoSuchClass", GetModuleHandleW(nullptr)));
}

TEST(TickCountTest, RunsInMilliseconds) {
    using namespace std::chrono;
    const DWORD nBefore = GetTickCount();
    const auto tBefore = steady_clock::now();
    for (int nPauses = 0; nPauses < 60'000 && GetTickCount() - nBefore < 50; nPauses++)
        std::this_thread::sleep_for(milliseconds(1));
    EXPECT_GE(GetTickCount() - nBefore, 50u);
    EXPECT_GE(steady_clock::now() - tBefore, milliseconds(50 - 16)); // the system counts in steps of up to 16
}
