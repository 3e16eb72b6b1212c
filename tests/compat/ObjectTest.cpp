// Run-time classes, exceptions, the application object, windows as objects, extension modules.

#include "CompatTest.h"

#include <compat/testing.h>

namespace {

class CParser : public CObject {
    DECLARE_DYNAMIC(CParser)
};
IMPLEMENT_DYNAMIC(CParser, CObject)

class CDirectParser : public CParser {
    DECLARE_DYNAMIC(CDirectParser)
};
IMPLEMENT_DYNAMIC(CDirectParser, CParser)

HWND CreateTestWindow() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"ObjectTestWindow";
    RegisterClassW(&windowClass); // the class may be there already
    return CreateWindowExW(0, L"ObjectTestWindow", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, windowClass.hInstance,
                           nullptr);
}

} // namespace

TEST(RuntimeClassTest, ObjectsKnowTheirClassAndBases) {
    CParser parser;
    CDirectParser direct;
    EXPECT_TRUE(direct.IsKindOf(RUNTIME_CLASS(CParser)));
    EXPECT_TRUE(direct.IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(direct.IsKindOf(RUNTIME_CLASS(CException)));
    EXPECT_STREQ(direct.GetRuntimeClass()->m_lpszClassName, "CDirectParser");
    EXPECT_EQ(DYNAMIC_DOWNCAST(CDirectParser, static_cast<CParser*>(&direct)), &direct);
    EXPECT_EQ(DYNAMIC_DOWNCAST(CDirectParser, &parser), nullptr);
    EXPECT_EQ(DYNAMIC_DOWNCAST(CDirectParser, static_cast<CParser*>(nullptr)), nullptr);
}

TEST(ExceptionTest, AreThrownByPointerOnceAndAgain) {
    for (int nRound = 0; nRound < 2; nRound++) {
        EXPECT_THROWS_FRAMEWORK(AfxThrowMemoryException(), CMemoryException);
        EXPECT_THROWS_FRAMEWORK(AfxThrowInvalidArgException(), CInvalidArgException);
        EXPECT_THROWS_FRAMEWORK(AfxThrowArchiveException(CArchiveException::badClass), CArchiveException);
    }
}

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
    struct CChoosing : CWinApp {
        CWnd* GetMainWnd() override { return &window; }
        CWnd window;
    } choosing;
    EXPECT_EQ(AfxGetApp()->GetMainWnd(), &choosing.window);
}

TEST(WndTest, ForwardsToTheWindowThatItOwns) {
    const HWND hOwned = CreateTestWindow();
    const HWND hDetached = CreateTestWindow();
    {
        CWnd window;
        EXPECT_FALSE(window.Attach(nullptr));
        ASSERT_TRUE(window.Attach(hOwned));
        EXPECT_EQ(window.GetSafeHwnd(), hOwned);
        EXPECT_TRUE(window.IsWindowEnabled());
        EXPECT_FALSE(window.EnableWindow(FALSE));
        EXPECT_TRUE(window.EnableWindow(FALSE));
        EXPECT_FALSE(window.IsWindowEnabled());
        EXPECT_TRUE(window.EnableWindow());
        EXPECT_TRUE(window.IsWindowEnabled());
        CWnd detaching;
        detaching.Attach(hDetached);
        EXPECT_EQ(detaching.Detach(), hDetached);
        EXPECT_EQ(detaching.GetSafeHwnd(), nullptr);
    }
    EXPECT_FALSE(DestroyWindow(hOwned));
    EXPECT_TRUE(DestroyWindow(hDetached));
}

TEST(ExtensionModuleTest, RegistersItsLibraryUntilTermination) {
    AFX_EXTENSION_MODULE state{};
    CompatFailExtensionModuleInit(true);
    EXPECT_FALSE(AfxInitExtensionModule(state, GetModuleHandleW(nullptr)));
    CompatFailExtensionModuleInit(false);
    EXPECT_FALSE(state.bInitialized);
    ASSERT_TRUE(AfxInitExtensionModule(state, GetModuleHandleW(nullptr)));
    EXPECT_EQ(state.hModule, GetModuleHandleW(nullptr));
    new CDynLinkLibrary(state);
    new CDynLinkLibrary(state);
    AFX_EXTENSION_MODULE other{};
    ASSERT_TRUE(AfxInitExtensionModule(other, reinterpret_cast<HMODULE>(8)));
    AfxTermExtensionModule(other);
    EXPECT_EQ(CompatExtensionModuleCount(), 2);
    for (int nRound = 0; nRound < 2; nRound++) {
        AfxTermExtensionModule(state);
        EXPECT_EQ(CompatExtensionModuleCount(), 0);
    }
}
