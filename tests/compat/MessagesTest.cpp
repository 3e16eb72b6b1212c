// Windows, messages and keyboard. The expectations hold on Windows and on the Linux subset alike.

#include "CompatTest.h"

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
    if (nMessage >= WM_USER || nMessage == WM_CREATE || nMessage == WM_DESTROY)
        g_received.push_back({nMessage, wParam, nMessage == WM_CREATE ? 0 : lParam});
    if (nMessage == WM_USER + 7)
        return 77;
    return DefWindowProcW(hWnd, nMessage, wParam, lParam);
}

LRESULT CALLBACK RefusingProcedure(HWND hWnd, UINT nMessage, WPARAM wParam, LPARAM lParam) {
    return nMessage == WM_CREATE ? -1 : DefWindowProcW(hWnd, nMessage, wParam, lParam);
}

ATOM RegisterTestClass(const wchar_t* pszName, WNDPROC pfnProcedure) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = pfnProcedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = pszName;
    return RegisterClassExW(&windowClass);
}

HWND CreateMessageWindow(const wchar_t* pszClass, DWORD nStyle = 0) {
    return CreateWindowExW(0, pszClass, L"", nStyle, 0, 0, 0, 0, HWND_MESSAGE, nullptr, GetModuleHandleW(nullptr),
                           nullptr);
}

class MessagesTest : public testing::Test {
protected:
    void SetUp() override {
        RegisterTestClass(g_pszClass, RecordingProcedure);
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
    EXPECT_EQ(RegisterWindowMessageW(L""), 0u);
}

TEST_F(MessagesTest, PostedMessagesArriveInOrderWhenDispatched) {
    EXPECT_TRUE(PostMessageW(m_hWnd, WM_USER + 1, 1, 2));
    EXPECT_TRUE(PostMessageW(m_hWnd, WM_USER + 2, 3, 4));
    EXPECT_TRUE(g_received.empty());
    MSG message;
    while (PeekMessageW(&message, m_hWnd, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
    EXPECT_EQ(g_received, (std::vector<SReceived>{{WM_USER + 1, 1, 2}, {WM_USER + 2, 3, 4}}));
}

TEST_F(MessagesTest, PeekingCanLeaveOrFilterMessages) {
    PostMessageW(m_hWnd, WM_USER + 1, 0, 0);
    PostMessageW(m_hWnd, WM_USER + 5, 0, 0);
    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, m_hWnd, 0, 0, PM_NOREMOVE));
    EXPECT_EQ(message.message, WM_USER + 1u);
    EXPECT_TRUE(PeekMessageW(&message, m_hWnd, WM_USER + 4, WM_USER + 6, PM_REMOVE));
    EXPECT_EQ(message.message, WM_USER + 5u);
    EXPECT_EQ(message.hwnd, m_hWnd);
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, WM_USER + 1u);
    EXPECT_FALSE(PeekMessageW(&message, m_hWnd, 0, 0, PM_REMOVE));
}

TEST_F(MessagesTest, SentMessagesAreAnsweredAtOnce) {
    EXPECT_EQ(SendMessageW(m_hWnd, WM_USER + 7, 5, 6), 77);
    EXPECT_EQ(g_received, (std::vector<SReceived>{{WM_USER + 7, 5, 6}}));
}

TEST_F(MessagesTest, UnknownWindowsAreRefused) {
    HWND hUnknown = reinterpret_cast<HWND>(0x7FFF0);
    SetLastError(0);
    EXPECT_FALSE(PostMessageW(hUnknown, WM_USER, 0, 0));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_WINDOW_HANDLE));
    EXPECT_EQ(SendMessageW(hUnknown, WM_USER + 7, 0, 0), 0);
    EXPECT_FALSE(DestroyWindow(hUnknown));
    EXPECT_FALSE(EnableWindow(hUnknown, TRUE));
    EXPECT_EQ(SetWindowLongPtrW(hUnknown, GWLP_USERDATA, 1), 0);
    EXPECT_FALSE(IsWindow(hUnknown));
    EXPECT_FALSE(IsWindowEnabled(hUnknown));
    EXPECT_FALSE(IsWindowVisible(hUnknown));
    EXPECT_FALSE(IsIconic(hUnknown));
}

TEST_F(MessagesTest, ADestroyedWindowGetsNothingMore) {
    PostMessageW(m_hWnd, WM_USER + 1, 0, 0);
    EXPECT_TRUE(DestroyWindow(m_hWnd));
    EXPECT_EQ(g_received, (std::vector<SReceived>{{WM_DESTROY, 0, 0}}));
    EXPECT_FALSE(IsWindow(m_hWnd));
    MSG message;
    EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_USER, WM_USER + 10, PM_REMOVE));
    EXPECT_FALSE(PostMessageW(m_hWnd, WM_USER + 1, 0, 0));
}

TEST_F(MessagesTest, OtherThreadsMayPost) {
    std::vector<std::thread> threads;
    for (int nThread = 0; nThread < 4; nThread++) {
        threads.emplace_back([this] {
            for (int nMessage = 0; nMessage < 500; nMessage++)
                ASSERT_TRUE(PostMessageW(m_hWnd, WM_USER + 1, 0, 0));
        });
    }
    int nReceived = 0;
    MSG message;
    while (nReceived < 2000 && GetMessageW(&message, m_hWnd, WM_USER + 1, WM_USER + 1) > 0)
        nReceived++;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(nReceived, 2000);
}

TEST_F(MessagesTest, QuitComesAfterEverythingElse) {
    PostQuitMessage(5);
    PostMessageW(m_hWnd, WM_USER + 1, 0, 0);
    MSG message;
    EXPECT_GT(GetMessageW(&message, nullptr, 0, 0), 0);
    EXPECT_EQ(message.message, WM_USER + 1u);
    EXPECT_EQ(GetMessageW(&message, nullptr, 0, 0), 0);
    EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(message.wParam, 5u);
}

TEST_F(MessagesTest, WindowsKeepTheirUserData) {
    EXPECT_EQ(GetWindowLongPtrW(m_hWnd, GWLP_USERDATA), 0);
    EXPECT_EQ(SetWindowLongPtrW(m_hWnd, GWLP_USERDATA, 42), 0);
    EXPECT_EQ(SetWindowLongPtrW(m_hWnd, GWLP_USERDATA, 43), 42);
    EXPECT_EQ(GetWindowLongPtrW(m_hWnd, GWLP_USERDATA), 43);
}

TEST_F(MessagesTest, TheProcedureCanBeReplaced) {
    SetWindowLongPtrW(m_hWnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&DefWindowProcW));
    EXPECT_EQ(SendMessageW(m_hWnd, WM_USER + 7, 0, 0), 0);
    EXPECT_TRUE(g_received.empty());
}

TEST_F(MessagesTest, CloseDestroysByDefault) {
    SendMessageW(m_hWnd, WM_CLOSE, 0, 0);
    EXPECT_FALSE(IsWindow(m_hWnd));
}

TEST_F(MessagesTest, ClassesAreRegisteredOnceAndNotWhileInUse) {
    EXPECT_EQ(RegisterTestClass(g_pszClass, RecordingProcedure), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CLASS_ALREADY_EXISTS));
    EXPECT_EQ(RegisterTestClass(L"MESSAGESTESTWINDOW", RecordingProcedure), 0);
    EXPECT_FALSE(UnregisterClassW(g_pszClass, GetModuleHandleW(nullptr)));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CLASS_HAS_WINDOWS));
    EXPECT_EQ(CreateMessageWindow(L"NoSuchClass"), nullptr);
    EXPECT_FALSE(UnregisterClassW(L"NoSuchClass", GetModuleHandleW(nullptr)));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CLASS_DOES_NOT_EXIST));
}

TEST_F(MessagesTest, AProcedureCanRefuseItsWindow) {
    const ATOM nAtom = RegisterTestClass(L"RefusingWindow", RefusingProcedure);
    ASSERT_NE(nAtom, 0);
    EXPECT_EQ(CreateMessageWindow(L"refusingwindow"), nullptr);
    EXPECT_TRUE(UnregisterClassW(MAKEINTRESOURCEW(nAtom), GetModuleHandleW(nullptr)));
}

TEST_F(MessagesTest, StatesFollowStyleAndCalls) {
    EXPECT_TRUE(IsWindowEnabled(m_hWnd));
    EXPECT_FALSE(EnableWindow(m_hWnd, FALSE));
    EXPECT_TRUE(EnableWindow(m_hWnd, FALSE));
    EXPECT_FALSE(IsWindowEnabled(m_hWnd));
    EXPECT_TRUE(EnableWindow(m_hWnd, TRUE));
    EXPECT_TRUE(IsWindowEnabled(m_hWnd));
    EXPECT_FALSE(IsWindowVisible(m_hWnd));

    HWND hDisabled = CreateMessageWindow(g_pszClass, WS_DISABLED);
    EXPECT_FALSE(IsWindowEnabled(hDisabled));
    DestroyWindow(hDisabled);
    HWND hMinimised = CreateMessageWindow(g_pszClass, WS_MINIMIZE);
    EXPECT_TRUE(IsIconic(hMinimised));
    DestroyWindow(hMinimised);
}

TEST_F(MessagesTest, MessageOnlyWindowsAreNeverVisible) {
    HWND hWnd = CreateMessageWindow(g_pszClass, WS_VISIBLE);
    EXPECT_FALSE(IsWindowVisible(hWnd));
    DestroyWindow(hWnd);
}

#if !defined(_WIN32) // there, the limit is a setting and top-level windows need a display

TEST_F(MessagesTest, TheQueueHoldsTenThousandMessages) {
    int nPosted = 0;
    while (nPosted < 20000 && PostMessageW(m_hWnd, WM_USER + 1, 0, 0))
        nPosted++;
    EXPECT_EQ(nPosted, 10000);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_QUOTA));
    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_TRUE(PostMessageW(m_hWnd, WM_USER + 1, 0, 0));
}

TEST_F(MessagesTest, TopLevelWindowsShowHideAndMinimise) {
    HWND hTop =
        CreateWindowExW(0, g_pszClass, L"", WS_OVERLAPPEDWINDOW, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    HWND hChild =
        CreateWindowExW(0, g_pszClass, L"", WS_CHILD | WS_VISIBLE, 0, 0, 10, 10, hTop, nullptr, nullptr, nullptr);
    EXPECT_FALSE(IsWindowVisible(hTop));
    EXPECT_FALSE(IsWindowVisible(hChild));
    EXPECT_FALSE(ShowWindow(hTop, SW_SHOW));
    EXPECT_TRUE(IsWindowVisible(hTop));
    EXPECT_TRUE(IsWindowVisible(hChild));
    EXPECT_TRUE(ShowWindow(hTop, SW_MINIMIZE));
    EXPECT_TRUE(IsIconic(hTop));
    ShowWindow(hTop, SW_RESTORE);
    EXPECT_FALSE(IsIconic(hTop));
    EXPECT_TRUE(ShowWindow(hTop, SW_HIDE));
    EXPECT_FALSE(IsWindowVisible(hTop));
    EXPECT_TRUE(DestroyWindow(hTop));
    EXPECT_FALSE(IsWindow(hChild));
}

#endif

TEST(KeyboardTest, KeysAreDownAndToggledAsSet) {
    BYTE state[256] = {};
    state[VK_SHIFT] = 0x80;
    state[VK_CAPITAL] = 0x01;
    state['A'] = 0x81;
    ASSERT_TRUE(SetKeyboardState(state));
    EXPECT_LT(GetKeyState(VK_SHIFT), 0);
    EXPECT_EQ(GetKeyState(VK_SHIFT) & 1, 0);
    EXPECT_EQ(GetKeyState(VK_CAPITAL), 1);
    EXPECT_LT(GetKeyState('A'), 0);
    EXPECT_EQ(GetKeyState('A') & 1, 1);
    EXPECT_EQ(GetKeyState(VK_CONTROL), 0);

    BYTE read[256] = {};
    ASSERT_TRUE(GetKeyboardState(read));
    EXPECT_EQ(read[VK_SHIFT], 0x80);
    EXPECT_EQ(read['A'], 0x81);
    BYTE allUp[256] = {};
    SetKeyboardState(allUp);
    EXPECT_EQ(GetKeyState(VK_SHIFT), 0);
}

TEST(TickCountTest, RunsInMilliseconds) {
    const DWORD nBefore = GetTickCount();
    Sleep(30);
    const DWORD nPassed = GetTickCount() - nBefore;
    EXPECT_GE(nPassed, 15u);
    EXPECT_LT(nPassed, 5000u);
}
