// Loading of libraries: the entry point, refusal, counting, exported functions, icons. The expectations hold on Windows
// and on the Linux subset alike.

#include "CompatTest.h"

#include <compat/testing.h>

#include <vector>

namespace {

std::wstring TestModulePath() {
    return std::filesystem::path(COMPAT_TEST_MODULE).wstring();
}

// The reasons that the module's DllMain was called with since the last time; it posts them to the queue.
std::vector<WPARAM> EntryCalls() {
    std::vector<WPARAM> reasons;
    MSG message;
    while (PeekMessageW(&message, nullptr, WM_APP, WM_APP, PM_REMOVE))
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
};

} // namespace

TEST_F(ModuleTest, EntryIsCalledOnFirstLoadAndLastFree) {
    const HMODULE hModule = LoadLibraryW(TestModulePath().c_str());
    ASSERT_NE(hModule, nullptr);
    EXPECT_EQ(EntryCalls(), std::vector<WPARAM>{DLL_PROCESS_ATTACH});
    EXPECT_EQ(CompatExtensionModuleCount(), 1);
    EXPECT_EQ(LoadLibraryW(TestModulePath().c_str()), hModule);
    EXPECT_TRUE(FreeLibrary(hModule));
    EXPECT_EQ(EntryCalls(), std::vector<WPARAM>{});
    EXPECT_TRUE(FreeLibrary(hModule));
    EXPECT_EQ(EntryCalls(), std::vector<WPARAM>{DLL_PROCESS_DETACH});
    EXPECT_EQ(CompatExtensionModuleCount(), 0);
    EXPECT_EQ(GetModuleHandleW(TestModulePath().c_str()), nullptr);
}

TEST_F(ModuleTest, CanBeLoadedAgain) {
    for (int nRound = 0; nRound < 3; nRound++) {
        const HMODULE hModule = LoadLibraryW(TestModulePath().c_str());
        ASSERT_NE(hModule, nullptr);
        EXPECT_EQ(Function<int (*)()>(hModule, "CountCalls")(), 1) << "static data must be new";
        EXPECT_TRUE(FreeLibrary(hModule));
        EXPECT_EQ(EntryCalls(), (std::vector<WPARAM>{DLL_PROCESS_ATTACH, DLL_PROCESS_DETACH}));
    }
}

TEST_F(ModuleTest, ARefusingEntryUnloadsTheModule) {
    CompatFailExtensionModuleInit(true);
    EXPECT_EQ(LoadLibraryW(TestModulePath().c_str()), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_DLL_INIT_FAILED));
    CompatFailExtensionModuleInit(false);
    EXPECT_EQ(EntryCalls(), (std::vector<WPARAM>{DLL_PROCESS_ATTACH, DLL_PROCESS_DETACH}));
    EXPECT_EQ(CompatExtensionModuleCount(), 0);
    EXPECT_EQ(GetModuleHandleW(TestModulePath().c_str()), nullptr);

    const HMODULE hModule = LoadLibraryW(TestModulePath().c_str());
    EXPECT_NE(hModule, nullptr);
    EXPECT_TRUE(FreeLibrary(hModule));
}

TEST_F(ModuleTest, FilesThatAreMissingOrNoLibrariesAreRefused) {
    EXPECT_EQ(LoadLibraryW(L"no-such-folder\\no-such-module.dll"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    const CTemporaryFile file("text.dll", "this is no library");
    EXPECT_EQ(LoadLibraryW(file.Path().c_str()), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_BAD_EXE_FORMAT));
#if !defined(_WIN32)
    EXPECT_NE(std::string(CompatLoadErrorText()).find("text.dll"), std::string::npos);
#endif
}

TEST_F(ModuleTest, OnlyItsOwnExportsAreFound) {
    const HMODULE hModule = LoadLibraryW(TestModulePath().c_str());
    ASSERT_NE(hModule, nullptr);
    EXPECT_NE(GetProcAddress(hModule, "CountCalls"), nullptr);
    EXPECT_EQ(GetProcAddress(hModule, "NoSuchFunction"), nullptr);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
    EXPECT_EQ(GetProcAddress(hModule, "GetTickCount"), nullptr);
    EXPECT_EQ(GetProcAddress(hModule, "DllMain"), nullptr);
    EXPECT_TRUE(FreeLibrary(hModule));
}

TEST_F(ModuleTest, HandlesAndPathsLeadToOneAnother) {
    const HMODULE hModule = LoadLibraryW(TestModulePath().c_str());
    ASSERT_NE(hModule, nullptr);
    EXPECT_EQ(Function<HMODULE (*)()>(hModule, "EntryInstance")(), hModule);
    EXPECT_EQ(GetModuleHandleW(TestModulePath().c_str()), hModule);
    EXPECT_EQ(GetModuleHandleW(std::filesystem::path(COMPAT_TEST_MODULE).filename().wstring().c_str()), hModule);

    wchar_t szPath[1000];
    const DWORD nLength = GetModuleFileNameW(hModule, szPath, 1000);
    EXPECT_TRUE(std::filesystem::equivalent(std::filesystem::path(std::wstring(szPath, nLength)), TestModulePath()));
    EXPECT_EQ(GetModuleFileNameW(hModule, szPath, 5), 5u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_TRUE(FreeLibrary(hModule));
}

TEST_F(ModuleTest, TheProgramItselfHasAHandleAndAPath) {
    const HMODULE hProgram = GetModuleHandleW(nullptr);
    EXPECT_NE(hProgram, nullptr);
    wchar_t szByHandle[1000];
    wchar_t szByNull[1000];
    EXPECT_GT(GetModuleFileNameW(hProgram, szByHandle, 1000), 0u);
    EXPECT_GT(GetModuleFileNameW(nullptr, szByNull, 1000), 0u);
    EXPECT_STREQ(szByHandle, szByNull);
    EXPECT_NE(std::wstring(szByNull).find(L"compat_tests"), std::wstring::npos);
}

TEST_F(ModuleTest, UnknownHandlesAreNotFreed) {
    EXPECT_FALSE(FreeLibrary(nullptr));
}

#if COMPAT_TEST_ICONS

TEST_F(ModuleTest, IconsAreLoadedByNumberInTheirOwnSize) {
    const HMODULE hModule = LoadLibraryW(TestModulePath().c_str());
    ASSERT_NE(hModule, nullptr);
    const struct {
        int nId;
        int nWanted;
        LONG nSize;
    } cases[] = {{100, 0, 16}, {101, 0, 32}, {102, 16, 16}, {102, 32, 32}, {102, 0, 24}};
    for (const auto& row : cases) {
        const HICON hIcon = static_cast<HICON>(
            LoadImageW(hModule, MAKEINTRESOURCEW(row.nId), IMAGE_ICON, row.nWanted, row.nWanted, LR_DEFAULTCOLOR));
        ASSERT_NE(hIcon, nullptr) << row.nId;
        ICONINFO info{};
        ASSERT_TRUE(GetIconInfo(hIcon, &info));
        EXPECT_TRUE(info.fIcon);
        BITMAP bitmap{};
        EXPECT_EQ(GetObjectW(info.hbmColor, sizeof(bitmap), &bitmap), static_cast<int>(sizeof(bitmap)));
        EXPECT_EQ(bitmap.bmWidth, row.nSize);
        EXPECT_EQ(bitmap.bmHeight, row.nSize);
        EXPECT_TRUE(DeleteObject(info.hbmMask));
        EXPECT_TRUE(DeleteObject(info.hbmColor));
        EXPECT_TRUE(DestroyIcon(hIcon));
        EXPECT_FALSE(DestroyIcon(hIcon));
    }
    EXPECT_TRUE(FreeLibrary(hModule));
}

TEST_F(ModuleTest, UnknownIconsAreReported) {
    const HMODULE hModule = LoadLibraryW(TestModulePath().c_str());
    ASSERT_NE(hModule, nullptr);
    EXPECT_EQ(LoadImageW(hModule, MAKEINTRESOURCEW(99), IMAGE_ICON, 0, 0, 0), nullptr);
    const DWORD nError = GetLastError(); // which of the two depends on the system's age
    EXPECT_TRUE(nError == ERROR_RESOURCE_NAME_NOT_FOUND || nError == ERROR_RESOURCE_TYPE_NOT_FOUND) << nError;
    EXPECT_NE(FindResourceW(hModule, MAKEINTRESOURCEW(100), RT_GROUP_ICON), nullptr);
    EXPECT_EQ(FindResourceW(hModule, MAKEINTRESOURCEW(99), RT_GROUP_ICON), nullptr);
    EXPECT_TRUE(FreeLibrary(hModule));
}

TEST_F(ModuleTest, ResourcesAreFoundInExtensionModules) {
    const HMODULE hModule = LoadLibraryW(TestModulePath().c_str());
    ASSERT_NE(hModule, nullptr);
    EXPECT_EQ(AfxFindResourceHandle(MAKEINTRESOURCEW(100), RT_GROUP_ICON), hModule);
    EXPECT_EQ(AfxFindResourceHandle(MAKEINTRESOURCEW(99), RT_GROUP_ICON), AfxGetResourceHandle());
    EXPECT_TRUE(FreeLibrary(hModule));
    EXPECT_EQ(AfxFindResourceHandle(MAKEINTRESOURCEW(100), RT_GROUP_ICON), AfxGetResourceHandle());
}

#endif

#if !defined(_WIN32)

TEST_F(ModuleTest, BrokenIconsAreReported) {
    const HMODULE hModule = LoadLibraryW(TestModulePath().c_str());
    ASSERT_NE(hModule, nullptr);
    for (const int nId : {103, 104, 105}) {
        SetLastError(0);
        EXPECT_EQ(LoadImageW(hModule, MAKEINTRESOURCEW(nId), IMAGE_ICON, 0, 0, 0), nullptr) << nId;
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_RESOURCE_DATA_NOT_FOUND)) << nId;
    }
    EXPECT_TRUE(FreeLibrary(hModule));
}

#endif
