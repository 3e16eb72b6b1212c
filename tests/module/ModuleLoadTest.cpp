// Loading and unloading the module.
#include <algorithm>

#include "ModuleHost.h"
#include "SystemCalls.h"

#if !defined(_MSC_VER)
#include <compat/testing.h>
#endif

namespace {

using ModuleLoad = ModuleTest;

TEST_F(ModuleLoad, UnloadingLeavesNoCodeBehind) {
    EXPECT_NE(GetModuleHandleW(MODULE_FILE_NAME), nullptr);
    m_host.Unload();
    EXPECT_EQ(GetModuleHandleW(MODULE_FILE_NAME), nullptr);
}

TEST_F(ModuleLoad, WorksAgainAfterUnloading) {
    for (int i = 0; i < 3; ++i) {
        m_host.CreateNode(TYPE_KEYBOARD);
        EXPECT_EQ(m_host.Call(1, nullptr, nullptr), 1);
        m_host.Unload();
        m_host.Load();
    }
    NodeScene scene(m_host, TYPE_KEYBOARD);
    EXPECT_EQ(scene.Evaluate(), 1);
}

TEST_F(ModuleLoad, SecondLoadIsTheSameModule) {
    const HMODULE hSecond = LoadLibraryW(ModuleHost::ModulePath().wstring().c_str());
    EXPECT_EQ(hSecond, m_host.Module());
    FreeLibrary(hSecond);
    EXPECT_NE(GetModuleHandleW(MODULE_FILE_NAME), nullptr);
}

TEST_F(ModuleLoad, ExportsTheFunctionByName) {
    EXPECT_NE(GetProcAddress(m_host.Module(), "IOProcessFunc"), nullptr);
    EXPECT_EQ(GetProcAddress(m_host.Module(), "DllMain"), nullptr);
    EXPECT_EQ(GetProcAddress(m_host.Module(), "ModuleInstance"), nullptr);
}

#if defined(_WIN32)

TEST_F(ModuleLoad, RegistersTheTrackerMessages) {
    for (const wchar_t* pszName : {L"TrackerHandMsg", L"TrackerGestureMsg"}) {
        // Registered messages and clipboard formats share one table, which can be read by number.
        const UINT nMessage = RegisterWindowMessageW(pszName);
        wchar_t szName[64];
        ASSERT_GT(GetClipboardFormatNameW(nMessage, szName, 64), 0);
        EXPECT_STREQ(szName, pszName);
    }
}

#else

TEST_F(ModuleLoad, RegistersTheTrackerMessages) {
    m_host.Unload();
    TakeRegisteredMessages();
    m_host.Load();
    const std::vector<std::wstring> expected = {L"TrackerHandMsg", L"TrackerGestureMsg"};
    EXPECT_EQ(TakeRegisteredMessages(), expected);
    EXPECT_NE(RegisterWindowMessageW(L"TrackerHandMsg"), RegisterWindowMessageW(L"TrackerGestureMsg"));
}

#endif

#if !defined(_MSC_VER)

TEST_F(ModuleLoad, IsInTheFrameworksListOfModulesWhileLoaded) {
    EXPECT_EQ(CompatExtensionModuleCount(), 1);
    m_host.Unload();
    EXPECT_EQ(CompatExtensionModuleCount(), 0);
    m_host.Load();
    EXPECT_EQ(CompatExtensionModuleCount(), 1);
}

TEST_F(ModuleLoad, RefusesLoadingWhenTheFrameworkFails) {
    m_host.Unload();
    CompatFailExtensionModuleInit(true);
    SetLastError(0);
    EXPECT_EQ(LoadLibraryW(ModuleHost::ModulePath().wstring().c_str()), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DLL_INIT_FAILED));
    CompatFailExtensionModuleInit(false);
    EXPECT_EQ(CompatExtensionModuleCount(), 0);
    EXPECT_EQ(GetModuleHandleW(MODULE_FILE_NAME), nullptr);
    m_host.Load();
    m_host.CreateNode(TYPE_MOUSE);
}

#endif

} // namespace
