#include "CompatTest.h"

#include <compat/testing.h>

namespace {

HWND CreateTestWindow(DWORD nStyle, HWND hParent) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"ApplicationTestWindow";
    RegisterClassW(&windowClass);
    return CreateWindowExW(0, L"ApplicationTestWindow", L"", nStyle, 0, 0, 10, 10, hParent, nullptr,
                           windowClass.hInstance, nullptr);
}

class COtherWindowApp : public CWinApp {
public:
    CWnd* GetMainWnd() override { return &m_wndOther; }
    CWnd m_wndOther;
};

} // namespace

TEST(ApplicationTest, WithoutObjectThereIsNoApplicationAndNoWindow) {
    EXPECT_EQ(AfxGetApp(), nullptr);
    EXPECT_EQ(AfxGetMainWnd(), nullptr);
    EXPECT_EQ(AfxGetInstanceHandle(), GetModuleHandleW(nullptr));
}

TEST(ApplicationTest, TheObjectRegistersItselfAndItsMainWindow) {
    {
        CWinApp app(L"name");
        EXPECT_EQ(AfxGetApp(), &app);
        EXPECT_EQ(AfxGetThread(), &app);
        EXPECT_EQ(app.m_strAppName, L"name");
        EXPECT_EQ(app.m_hInstance, GetModuleHandleW(nullptr));
        EXPECT_EQ(AfxGetMainWnd(), nullptr);
        CWnd window;
        app.m_pMainWnd = &window;
        EXPECT_EQ(AfxGetMainWnd(), &window);
    }
    EXPECT_EQ(AfxGetApp(), nullptr);
}

TEST(ApplicationTest, TheMainWindowMayBeAnswered) {
    COtherWindowApp app;
    EXPECT_EQ(AfxGetMainWnd(), &app.m_wndOther);
    EXPECT_EQ(app.m_pMainWnd, nullptr);
}

TEST(WndTest, ForwardsToItsWindow) {
    CWnd window;
    EXPECT_EQ(window.GetSafeHwnd(), nullptr);
    EXPECT_FALSE(window.Attach(nullptr));
    ASSERT_TRUE(window.Attach(CreateTestWindow(0, HWND_MESSAGE)));
    EXPECT_TRUE(IsWindow(window.GetSafeHwnd()));
    EXPECT_TRUE(window.IsWindowEnabled());
    EXPECT_FALSE(window.EnableWindow(FALSE));
    EXPECT_FALSE(window.IsWindowEnabled());
    EXPECT_TRUE(window.EnableWindow());
    EXPECT_FALSE(window.IsWindowVisible());
    EXPECT_FALSE(window.IsIconic());
    EXPECT_TRUE(window.PostMessage(WM_APP, 1, 2));
    MSG message;
    ASSERT_TRUE(PeekMessageW(&message, window.m_hWnd, WM_APP, WM_APP, PM_REMOVE));
    EXPECT_EQ(message.wParam, 1u);
    EXPECT_EQ(message.lParam, 2);
}

TEST(WndTest, DestroysTheWindowItStillOwns) {
    HWND hOwned = CreateTestWindow(0, HWND_MESSAGE);
    HWND hDetached = CreateTestWindow(0, HWND_MESSAGE);
    {
        const CWnd owner(hOwned);
        CWnd detaching(hDetached);
        EXPECT_EQ(detaching.Detach(), hDetached);
    }
    EXPECT_FALSE(IsWindow(hOwned));
    EXPECT_TRUE(IsWindow(hDetached));
    EXPECT_TRUE(DestroyWindow(hDetached));
}

TEST(ExtensionModuleTest, RegistersItsLibraryUntilTermination) {
    AFX_EXTENSION_MODULE state{};
    const HMODULE hModule = GetModuleHandleW(nullptr);
    ASSERT_TRUE(AfxInitExtensionModule(state, hModule));
    EXPECT_TRUE(state.bInitialized);
    EXPECT_EQ(state.hModule, hModule);
    EXPECT_EQ(state.hResource, hModule);

    const CDynLinkLibrary* pLibrary = new CDynLinkLibrary(state);
    new CDynLinkLibrary(state);
    EXPECT_EQ(pLibrary->m_hModule, hModule);
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
