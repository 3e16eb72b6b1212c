// Loading of libraries: the entry point, refusal, counting, exported functions, icons. The expectations hold on Windows
// and on the Linux subset alike.

#include "CompatTest.h"

#include <compat/testing.h>

#include <filesystem>
#include <fstream>
#include <vector>

namespace {

std::wstring TestModulePath() {
    return std::filesystem::path(COMPAT_TEST_MODULE).wstring();
}

std::wstring TestModuleName() {
    return std::filesystem::path(COMPAT_TEST_MODULE).filename().wstring();
}

// The reasons that the module's DllMain was called with since the last time; it posts them to the queue. Threads are
// left out: Windows may start some of its own.
std::vector<WPARAM> EntryCalls() {
    std::vector<WPARAM> reasons;
    MSG message;
    while (PeekMessageW(&message, nullptr, WM_APP, WM_APP, PM_REMOVE))
        if (message.wParam != DLL_THREAD_ATTACH && message.wParam != DLL_THREAD_DETACH)
            reasons.push_back(message.wParam);
    return reasons;
}

template <class FUNCTION>
FUNCTION Function(HMODULE hModule, const char* pszName) {
    return reinterpret_cast<FUNCTION>(reinterpret_cast<void*>(GetProcAddress(hModule, pszName)));
}

class ModuleTest : public testing::Test {
protected:
    void SetUp() override { EntryCalls(); }

    static HMODULE Load() {
        const HMODULE hModule = LoadLibraryW(TestModulePath().c_str());
        EXPECT_NE(hModule, nullptr);
        return hModule;
    }
};

} // namespace

TEST_F(ModuleTest, EntryIsCalledOnFirstLoadAndLastFree) {
    for (int nRound = 0; nRound < 2; nRound++) {
        const HMODULE hModule = Load();
        EXPECT_EQ(EntryCalls(), std::vector<WPARAM>{DLL_PROCESS_ATTACH});
        EXPECT_EQ(CompatExtensionModuleCount(), 1);
        EXPECT_EQ(Function<int (*)()>(hModule, "CountCalls")(), 1) << "static data must be new";
        EXPECT_EQ(Function<HMODULE (*)()>(hModule, "EntryInstance")(), hModule);
        EXPECT_EQ(GetModuleHandleW(TestModuleName().c_str()), hModule);
        EXPECT_EQ(Load(), hModule);
        EXPECT_TRUE(FreeLibrary(hModule));
        EXPECT_EQ(EntryCalls(), std::vector<WPARAM>{});
        EXPECT_TRUE(FreeLibrary(hModule));
        EXPECT_EQ(EntryCalls(), std::vector<WPARAM>{DLL_PROCESS_DETACH});
        EXPECT_EQ(CompatExtensionModuleCount(), 0);
        EXPECT_EQ(GetModuleHandleW(TestModuleName().c_str()), nullptr);
    }
}

TEST_F(ModuleTest, ARefusingEntryUnloadsTheModule) {
    CompatFailExtensionModuleInit(true);
    EXPECT_EQ(LoadLibraryW(TestModulePath().c_str()), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DLL_INIT_FAILED));
    CompatFailExtensionModuleInit(false);
    EXPECT_EQ(EntryCalls(), (std::vector<WPARAM>{DLL_PROCESS_ATTACH, DLL_PROCESS_DETACH}));
    EXPECT_EQ(CompatExtensionModuleCount(), 0);
    EXPECT_EQ(GetModuleHandleW(TestModuleName().c_str()), nullptr);
}

TEST_F(ModuleTest, FilesThatAreMissingOrNoLibrariesAreRefused) {
    EXPECT_EQ(LoadLibraryW(L"no-such-folder\\no-such-module.dll"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    const auto file = std::filesystem::temp_directory_path() / (std::to_string(GetCurrentProcessId()) + "text.dll");
    std::ofstream(file) << "this is no library";
    EXPECT_EQ(LoadLibraryW(file.wstring().c_str()), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_EXE_FORMAT));
#if !defined(_WIN32)
    EXPECT_NE(std::string(CompatLoadErrorText()).find("text.dll"), std::string::npos);
#endif
    std::filesystem::remove(file);
}

TEST_F(ModuleTest, OnlyItsOwnExportsAreFound) {
    const HMODULE hModule = Load();
    for (const char* pszName : {"NoSuchFunction", "GetTickCount", "DllMain"})
        EXPECT_EQ(GetProcAddress(hModule, pszName), nullptr) << pszName;
    EXPECT_TRUE(FreeLibrary(hModule));
    EXPECT_FALSE(FreeLibrary(nullptr));
}

TEST_F(ModuleTest, TheProgramItselfHasAHandleAndAPath) {
    EXPECT_NE(GetModuleHandleW(nullptr), nullptr);
    wchar_t szPath[1000];
    const DWORD nLength = GetModuleFileNameW(nullptr, szPath, 1000);
    EXPECT_NE(std::wstring(szPath).find(L"compat_tests"), std::wstring::npos);
    EXPECT_EQ(std::wcslen(szPath), nLength);
    EXPECT_EQ(GetModuleFileNameW(nullptr, szPath, 5), 5u);
}

TEST_F(ModuleTest, CarriesItsIcons) {
    const HMODULE hModule = Load();
    const auto load = [hModule](int nId) {
        return static_cast<HICON>(LoadImageW(hModule, MAKEINTRESOURCEW(nId), IMAGE_ICON, 0, 0, 0));
    };
    const HICON hFirst = load(100);
    const HICON hSecond = load(101);
    EXPECT_NE(hFirst, nullptr);
    EXPECT_NE(hSecond, nullptr);
    EXPECT_NE(hFirst, hSecond);
    EXPECT_EQ(load(99), nullptr);
    EXPECT_EQ(LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(100), IMAGE_ICON, 0, 0, 0), nullptr);
    EXPECT_TRUE(DestroyIcon(hFirst));
    EXPECT_FALSE(DestroyIcon(hFirst));
    EXPECT_TRUE(FreeLibrary(hModule));
    EXPECT_TRUE(DestroyIcon(hSecond)) << "it outlives the module";
}
