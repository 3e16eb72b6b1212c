#include "CompatTest.h"

#include <compat/testing.h>

namespace {

HWND CreateTestWindow() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"ApplicationTestWindow";
    RegisterClassW(&windowClass); // the class may be there already
    return CreateWindowExW(0, L"ApplicationTestWindow", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                           windowClass.hInstance, nullptr);
}

// Messages can be posted to it.
bool Exists(HWND hWnd) {
    return PostMessageW(hWnd, WM_NULL, 0, 0) != FALSE;
}

} // namespace

TEST(ApplicationTest, TheObjectRegistersItselfAndItsMainWindow) {
    EXPECT_EQ(AfxGetApp(), nullptr);
    {
        CWinApp app(L"name");
        EXPECT_EQ(AfxGetApp(), &app);
        EXPECT_EQ(AfxGetApp()->GetMainWnd(), nullptr);
        CWnd window;
        app.m_pMainWnd = &window;
        EXPECT_EQ(AfxGetApp()->GetMainWnd(), &window);
    }
    EXPECT_EQ(AfxGetApp(), nullptr);
}

TEST(WndTest, ForwardsToItsWindow) {
    CWnd window;
    EXPECT_EQ(window.GetSafeHwnd(), nullptr);
    EXPECT_FALSE(window.Attach(nullptr));
    ASSERT_TRUE(window.Attach(CreateTestWindow()));
    EXPECT_TRUE(Exists(window.GetSafeHwnd()));
    EXPECT_TRUE(window.IsWindowEnabled());
    EXPECT_FALSE(window.EnableWindow(FALSE));
    EXPECT_FALSE(window.IsWindowEnabled());
    EXPECT_TRUE(window.EnableWindow());
    EXPECT_TRUE(window.IsWindowEnabled());
}

TEST(WndTest, DestroysTheWindowItStillOwns) {
    const HWND hOwned = CreateTestWindow();
    const HWND hDetached = CreateTestWindow();
    {
        CWnd owner;
        owner.Attach(hOwned);
        CWnd detaching;
        detaching.Attach(hDetached);
        EXPECT_EQ(detaching.Detach(), hDetached);
        EXPECT_EQ(detaching.GetSafeHwnd(), nullptr);
    }
    EXPECT_FALSE(Exists(hOwned));
    EXPECT_TRUE(Exists(hDetached));
    EXPECT_TRUE(DestroyWindow(hDetached));
}

TEST(ExtensionModuleTest, RegistersItsLibraryUntilTermination) {
    AFX_EXTENSION_MODULE state{};
    const HMODULE hModule = GetModuleHandleW(nullptr);
    ASSERT_TRUE(AfxInitExtensionModule(state, hModule));
    EXPECT_TRUE(state.bInitialized);
    EXPECT_EQ(state.hModule, hModule);

    new CDynLinkLibrary(state);
    new CDynLinkLibrary(state);
    EXPECT_EQ(CompatExtensionModuleCount(), 2);

    AFX_EXTENSION_MODULE other{};
    ASSERT_TRUE(AfxInitExtensionModule(other, reinterpret_cast<HMODULE>(8)));
    AfxTermExtensionModule(other);
    EXPECT_EQ(CompatExtensionModuleCount(), 2);
    AfxTermExtensionModule(state);
    EXPECT_EQ(CompatExtensionModuleCount(), 0);
    AfxTermExtensionModule(state);
    EXPECT_EQ(CompatExtensionModuleCount(), 0);
}

TEST(ExtensionModuleTest, InitialisationCanBeMadeToFail) {
    AFX_EXTENSION_MODULE state{};
    CompatFailExtensionModuleInit(true);
    EXPECT_FALSE(AfxInitExtensionModule(state, GetModuleHandleW(nullptr)));
    CompatFailExtensionModuleInit(false);
    EXPECT_FALSE(state.bInitialized);
    EXPECT_TRUE(AfxInitExtensionModule(state, GetModuleHandleW(nullptr)));
    AfxTermExtensionModule(state);
}

namespace {

class CChoosingApplication : public CWinApp {
public:
    CWnd* GetMainWnd() override { return &m_window; }

    CWnd m_window;
};

} // namespace

TEST(ApplicationTest, AProgramChoosesItsMainWindow) {
    CChoosingApplication application;
    EXPECT_EQ(application.m_pMainWnd, nullptr);
    EXPECT_EQ(AfxGetApp()->GetMainWnd(), &application.m_window);
}
