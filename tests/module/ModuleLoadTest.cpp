// Loading and unloading the module.
#include <cstring>
#include <functional>
#include <thread>
#include <utility>

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

/// While it lives, calls of a system function go to another one of the same type. The two must not call each other.
class Diversion {
public:
    Diversion(void* pFunction, ULONG_PTR nReplacement) : m_pFunction(pFunction) {
        BYTE code[] = {0x48, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xE0}; // mov rax, nReplacement; jmp rax
        static_assert(sizeof(code) == sizeof(m_original));
        std::memcpy(code + 2, &nReplacement, sizeof(nReplacement));
        std::memcpy(m_original, m_pFunction, sizeof(m_original));
        Write(code);
    }
    ~Diversion() { Write(m_original); }

    Diversion(const Diversion&) = delete;
    Diversion& operator=(const Diversion&) = delete;

private:
    void Write(const BYTE* pCode) {
        DWORD nProtection;
        VirtualProtect(m_pFunction, sizeof(m_original), PAGE_EXECUTE_READWRITE, &nProtection);
        std::memcpy(m_pFunction, pCode, sizeof(m_original));
        VirtualProtect(m_pFunction, sizeof(m_original), nProtection, &nProtection);
        FlushInstructionCache(GetCurrentProcess(), m_pFunction, sizeof(m_original));
    }

    void* m_pFunction;
    BYTE m_original[12];
};

std::vector<std::wstring> s_registered;

/// Registered messages outlive their programs, so the real function would not tell who registered one.
UINT WINAPI RecordMessage(LPCWSTR pszName) {
    s_registered.emplace_back(pszName);
    return 0xC000 + static_cast<UINT>(s_registered.size());
}

/// The names of the window messages that are registered meanwhile.
std::vector<std::wstring> RegisteredWhile(const std::function<void()>& act) {
    const FARPROC pRegister = GetProcAddress(GetModuleHandleW(L"user32.dll"), "RegisterWindowMessageW");
    const Diversion diversion(reinterpret_cast<void*>(pRegister), reinterpret_cast<ULONG_PTR>(&RecordMessage));
    act();
    return std::exchange(s_registered, {});
}

/// Let the system tell the module of a thread that begins and ends.
void AnnounceThread(HMODULE /*hModule*/) {
    std::thread([] {}).join();
}

#else

std::vector<std::wstring> RegisteredWhile(const std::function<void()>& act) {
    TakeRegisteredMessages();
    act();
    return TakeRegisteredMessages();
}

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

TEST_F(ModuleLoad, ThreadsThatComeAndGoChangeNothing) {
    NodeScene scene(m_host, TYPE_KEYBOARD);
    AnnounceThread(m_host.Module());
    EXPECT_EQ(scene.Evaluate(), 1);
    SIOProcessPluginData data;
    m_host.Call(0, nullptr, &data);
    ASSERT_EQ(data.arNodeInfo.GetSize(), 13);
    for (INT_PTR i = 0; i < data.arNodeInfo.GetSize(); ++i) {
        EXPECT_TRUE(DestroyIcon(data.arNodeInfo[i].hIcon)) << "the module finds its icons";
    }
#if defined(FRAMEWORK_IS_STAND_IN)
    EXPECT_EQ(CompatExtensionModuleCount(), 1);
#endif
}

TEST_F(ModuleLoad, RegistersTheTrackerMessages) {
    m_host.Unload();
    const std::vector<std::wstring> expected = {L"TrackerHandMsg", L"TrackerGestureMsg"};
    EXPECT_EQ(RegisteredWhile([this] { m_host.Load(); }), expected);
}

#if defined(FRAMEWORK_IS_STAND_IN)

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
