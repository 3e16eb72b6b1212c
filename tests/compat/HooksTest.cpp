// What only the Linux subset has or decides: its hooks, texts of 32-bit characters, and documented behaviour in which
// other implementations differ.

#include "CompatTest.h"

#include <compat/testing.h>

TEST(HooksTest, TheTickCountCanBeFrozen) {
    CompatFreezeTickCount(123456u);
    EXPECT_EQ(GetTickCount(), 123456u);
    CompatFreezeTickCount(0x1FFFFFFF0ull);
    EXPECT_EQ(GetTickCount(), 0xFFFFFFF0u);
    CompatFreezeTickCount(std::nullopt);
    EXPECT_NE(GetTickCount(), 0xFFFFFFF0u);
}

TEST(HooksTest, TheAnsiCodePageCanBeSet) {
    char bytes[10];
    ASSERT_TRUE(CompatSetAnsiCodePage(936));
    EXPECT_EQ(GetACP(), 936u);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, L"\x4E2D", 1, bytes, 10, nullptr, nullptr), 2);
    EXPECT_EQ(std::string(bytes, 2), "\xD6\xD0");
    EXPECT_FALSE(CompatSetAnsiCodePage(12345));
    EXPECT_FALSE(CompatSetAnsiCodePage(CP_ACP));
    EXPECT_EQ(GetACP(), 936u);
    ASSERT_TRUE(CompatSetAnsiCodePage(54936)); // has all of Unicode
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"\U0001F600", 1, bytes, 10, nullptr, nullptr), 4);
    EXPECT_EQ(std::string(bytes, 4), "\x94\x39\xFC\x36");
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, WC_COMPOSITECHECK, L"a", 1, bytes, 10, nullptr, nullptr), 0);
    ASSERT_TRUE(CompatSetAnsiCodePage(1252));
}

TEST(HooksTest, TheAnsiCodePageComesFromTheEnvironment) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // each try is a process of its own
    const std::pair<const char*, unsigned> rows[] = {{"936", 936}, {"65001", 65001}, {"12345", 1252}, {"", 1252}};
    for (const auto& [pszSetting, nExpected] : rows) {
        setenv("COMPAT_ANSI_CODE_PAGE", pszSetting, 1);
        EXPECT_EXIT(std::exit(GetACP() == nExpected ? 0 : 1), testing::ExitedWithCode(0), "") << pszSetting;
    }
    unsetenv("COMPAT_ANSI_CODE_PAGE");
}

TEST(HooksTest, ValuesThatAreNoCharactersAreReplaced) {
    const wchar_t values[] = {wchar_t(0x110000), wchar_t(0x7FFFFFFF), wchar_t(-1), wchar_t(0xDFFF)};
    char bytes[20];
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, values, 4, bytes, 20, nullptr, nullptr), 12);
    EXPECT_EQ(std::string(bytes, 3), "\xEF\xBF\xBD");
    EXPECT_EQ(WideCharToMultiByte(1252, 0, values, 4, bytes, 20, nullptr, nullptr), 4);
    EXPECT_EQ(std::string(bytes, 4), "????");
    EXPECT_EQ(WideCharToMultiByte(936, 0, values, 4, bytes, 20, nullptr, nullptr), 4);
}

TEST(HooksTest, Utf8HasNoDefaultCharacterAndComposesNothing) {
    char bytes[4];
    BOOL bUsed = FALSE;
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, L"a", 1, bytes, 4, "?", nullptr), 0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, L"a", 1, bytes, 4, nullptr, &bUsed), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_PARAMETER));
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, WC_COMPOSITECHECK, L"a", 1, bytes, 4, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_FLAGS));
}

TEST(HooksTest, EachByteOfAnEncodedSurrogateOrOverlongFormIsReplaced) {
    for (const std::string strBytes : {"\xED\xA0\x80", "\xE0\x80\x80", "\xF0\x80\x80\x80", "\xF4\x90\x80\x80"}) {
        wchar_t wide[4];
        const int nLength =
            MultiByteToWideChar(CP_UTF8, 0, strBytes.data(), static_cast<int>(strBytes.size()), wide, 4);
        EXPECT_EQ(std::wstring(wide, static_cast<std::size_t>(nLength)), std::wstring(strBytes.size(), L'\xFFFD'));
    }
}

TEST(HooksTest, ACutModulePathEndsWithAZero) {
    wchar_t szPath[5] = {L'#', L'#', L'#', L'#', L'#'};
    EXPECT_EQ(GetModuleFileNameW(nullptr, szPath, 5), 5u);
    EXPECT_EQ(szPath[4], 0);
}

TEST(HooksTest, ProfilesTakeBackslashesInPaths) {
    const CTemporaryFile file("slash.ini", "[S]\nKey=3\n");
    std::wstring strPath = file.Path();
    for (wchar_t& ch : strPath)
        ch = ch == L'/' ? L'\\' : ch;
    EXPECT_EQ(GetPrivateProfileIntW(L"S", L"Key", 0, strPath.c_str()), 3u);
}
