// Loading and unloading the module.
#include <set>
#include <string>
#include <thread>

#include "ModuleHost.h"
#include "SystemCalls.h"

// The controls of the framework's stand-in.
#if __has_include(<compat/testing.h>)
#define FRAMEWORK_IS_STAND_IN
#include <compat/testing.h>
#endif

namespace {

using ModuleLoad = ModuleTest;

#if defined(_WIN32)

/// Let the system tell the module of a thread that begins and ends.
void AnnounceThread(HMODULE /*hModule*/) {
    std::thread([] {}).join();
}

#else

void AnnounceThread(HMODULE hModule) {
    EXPECT_TRUE(CompatCallModuleEntry(hModule, DLL_THREAD_ATTACH));
    EXPECT_TRUE(CompatCallModuleEntry(hModule, DLL_THREAD_DETACH));
}

#endif

TEST_F(ModuleLoad, UnloadingLeavesNoCodeBehind) {
    EXPECT_NE(GetModuleHandleW(MODULE_FILE_NAME), nullptr);
    m_host.Unload();
    EXPECT_EQ(GetModuleHandleW(MODULE_FILE_NAME), nullptr);
}

TEST_F(ModuleLoad, ThreadsThatComeAndGoChangeNothing) {
    NodeScene scene(m_host, TYPE_KEYBOARD);
    AnnounceThread(m_host.Module());
    EXPECT_EQ(scene.Evaluate(), 1);
    SIOProcessPluginData data;
    m_host.Call(0, nullptr, &data);
    ASSERT_FALSE(data.arNodeInfo.IsEmpty());
    for (INT_PTR i = 0; i < data.arNodeInfo.GetSize(); ++i) {
        EXPECT_TRUE(DestroyIcon(data.arNodeInfo[i].hIcon)) << "the module finds its icons";
    }
#if defined(FRAMEWORK_IS_STAND_IN)
    EXPECT_EQ(CompatExtensionModuleCount(), 1);
#endif
}

TEST_F(ModuleLoad, RegistersTheTrackerMessages) {
#if defined(_WIN32) // nobody tells who registered a name, nor when; the table is that of the clipboard's formats, too
    std::set<std::wstring> names;
    for (UINT nMessage = 0xC000; nMessage <= 0xFFFF; ++nMessage) {
        wchar_t szName[64];
        names.emplace(szName, GetClipboardFormatNameW(nMessage, szName, 64));
    }
    EXPECT_TRUE(names.contains(L"TrackerHandMsg"));
    EXPECT_TRUE(names.contains(L"TrackerGestureMsg"));
#else
    m_host.Unload();
    TakeRegisteredMessages();
    m_host.Load();
    EXPECT_EQ(TakeRegisteredMessages(), (std::vector<std::wstring>{L"TrackerHandMsg", L"TrackerGestureMsg"}));
#endif
}

#if defined(FRAMEWORK_IS_STAND_IN)

TEST_F(ModuleLoad, RefusesLoadingWhenTheFrameworkFails) {
    m_host.Unload();
    EXPECT_EQ(CompatExtensionModuleCount(), 0);
    CompatFailExtensionModuleInit(true);
    SetLastError(0);
    EXPECT_EQ(LoadLibraryW(ModuleHost::ModulePath().wstring().c_str()), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DLL_INIT_FAILED));
    CompatFailExtensionModuleInit(false);
    EXPECT_EQ(CompatExtensionModuleCount(), 0);
    EXPECT_EQ(GetModuleHandleW(MODULE_FILE_NAME), nullptr);
    m_host.Load();
    EXPECT_EQ(CompatExtensionModuleCount(), 1);
    m_host.CreateNode(TYPE_MOUSE);
}

#endif

} // namespace
