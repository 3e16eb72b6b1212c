// What only the Linux subset has or decides: its hooks, and documented behaviour in which other implementations differ.

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

TEST(HooksTest, EachByteOfAnEncodedSurrogateOrOverlongFormIsReplaced) {
    for (const std::string strBytes : {"\xED\xA0\x80", "\xE0\x80\x80", "\xF0\x80\x80\x80", "\xF4\x90\x80\x80"}) {
        wchar_t wide[4];
        const int nLength =
            MultiByteToWideChar(CP_UTF8, 0, strBytes.data(), static_cast<int>(strBytes.size()), wide, 4);
        EXPECT_EQ(std::wstring(wide, static_cast<std::size_t>(nLength)), std::wstring(strBytes.size(), L'\xFFFD'));
    }
}
