// Code pages. The expectations hold on Windows and on the Linux subset alike.

#include "CompatTest.h"

#include <climits>

namespace {

constexpr UINT g_nGbk = 936;
constexpr UINT g_nLatin = 1252;

std::string Bytes(UINT nCodePage, const std::wstring& strWide, DWORD nFlags = 0) {
    char bytes[100];
    const int nLength = WideCharToMultiByte(nCodePage, nFlags, strWide.data(), static_cast<int>(strWide.size()), bytes,
                                            sizeof(bytes), nullptr, nullptr);
    return std::string(bytes, static_cast<std::size_t>(nLength));
}

std::wstring Wide(UINT nCodePage, const std::string& strBytes, DWORD nFlags = 0) {
    wchar_t wide[100];
    const int nLength =
        MultiByteToWideChar(nCodePage, nFlags, strBytes.data(), static_cast<int>(strBytes.size()), wide, 100);
    return std::wstring(wide, static_cast<std::size_t>(nLength));
}

} // namespace

TEST(CodePageTest, TextBecomesBytesOfTheCodePage) {
    EXPECT_EQ(Bytes(CP_UTF8, L"a\xE9\x4E2D\U0001F600"), "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80");
    EXPECT_EQ(Bytes(g_nLatin, L"a\xE9\x20AC\x81"), "a\xE9\x80\x81");
    EXPECT_EQ(Bytes(g_nGbk, L"a\x4E2D\x6587\x20AC"), "a\xD6\xD0\xCE\xC4\x80");
    EXPECT_EQ(Bytes(CP_ACP, L"plain", WC_COMPOSITECHECK), "plain");
}

TEST(CodePageTest, BytesBecomeText) {
    EXPECT_EQ(Wide(CP_UTF8, "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80"), L"a\xE9\x4E2D\U0001F600");
    EXPECT_EQ(Wide(g_nLatin, "a\xE9\x80\x81"), L"a\xE9\x20AC\x81");
    EXPECT_EQ(Wide(g_nGbk, "a\xD6\xD0\xCE\xC4\x80"), L"a\x4E2D\x6587\x20AC");
}

TEST(CodePageTest, LengthMinusOneIncludesTheZero) {
    char bytes[10];
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"abc", -1, nullptr, 0, nullptr, nullptr), 4);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"abc", -1, bytes, 10, nullptr, nullptr), 4);
    EXPECT_STREQ(bytes, "abc");
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"abc", 3, nullptr, 0, nullptr, nullptr), 3);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, 0, L"", -1, nullptr, 0, nullptr, nullptr), 1);
    wchar_t wide[10];
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, nullptr, 0), 4);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, wide, 10), 4);
    EXPECT_STREQ(wide, L"abc");
}

TEST(CodePageTest, TooSmallBuffersAreRefused) {
    char bytes[4];
    wchar_t wide[4];
    for (const UINT nCodePage : {UINT(CP_UTF8), g_nLatin, g_nGbk}) {
        SetLastError(0);
        EXPECT_EQ(WideCharToMultiByte(nCodePage, 0, L"abcd", -1, bytes, 4, nullptr, nullptr), 0);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
        SetLastError(0);
        EXPECT_EQ(MultiByteToWideChar(nCodePage, 0, "abcd", -1, wide, 4), 0);
        EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
        EXPECT_EQ(WideCharToMultiByte(nCodePage, 0, L"abcd", 4, bytes, 4, nullptr, nullptr), 4);
        EXPECT_EQ(MultiByteToWideChar(nCodePage, 0, "abcd", 4, wide, 4), 4);
    }
}

TEST(CodePageTest, InvalidArgumentsAreRefused) {
    const auto fails = [](int nResult, DWORD nError) {
        EXPECT_EQ(nResult, 0);
        EXPECT_EQ(GetLastError(), nError);
        SetLastError(0);
    };
    char bytes[10];
    wchar_t wide[10];
    fails(WideCharToMultiByte(CP_ACP, 0, nullptr, 1, bytes, 10, nullptr, nullptr), ERROR_INVALID_PARAMETER);
    fails(WideCharToMultiByte(CP_ACP, 0, L"a", 0, bytes, 10, nullptr, nullptr), ERROR_INVALID_PARAMETER);
    fails(WideCharToMultiByte(CP_ACP, 0, L"a", 1, nullptr, 10, nullptr, nullptr), ERROR_INVALID_PARAMETER);
    fails(WideCharToMultiByte(CP_ACP, 0, L"a", 1, bytes, -1, nullptr, nullptr), ERROR_INVALID_PARAMETER);
    fails(WideCharToMultiByte(64999, 0, L"a", 1, bytes, 10, nullptr, nullptr), ERROR_INVALID_PARAMETER);
    fails(MultiByteToWideChar(CP_ACP, 0, nullptr, 1, wide, 10), ERROR_INVALID_PARAMETER);
    fails(MultiByteToWideChar(CP_ACP, 0, "a", 0, wide, 10), ERROR_INVALID_PARAMETER);
    fails(MultiByteToWideChar(CP_ACP, 0, "a", 1, nullptr, 10), ERROR_INVALID_PARAMETER);
    fails(MultiByteToWideChar(CP_ACP, 0, "a", 1, wide, -1), ERROR_INVALID_PARAMETER);
    fails(MultiByteToWideChar(64999, 0, "a", 1, wide, 10), ERROR_INVALID_PARAMETER);
}

TEST(CodePageTest, CharactersThatAreMissingBecomeTheDefaultCharacter) {
    char bytes[10];
    BOOL bUsed = FALSE;
    EXPECT_EQ(WideCharToMultiByte(g_nLatin, 0, L"a\x4E2Dz", 3, bytes, 10, nullptr, &bUsed), 3);
    EXPECT_EQ(std::string(bytes, 3), "a?z");
    EXPECT_TRUE(bUsed);
    EXPECT_EQ(WideCharToMultiByte(g_nLatin, 0, L"a\x4E2Dz", 3, bytes, 10, "#", &bUsed), 3);
    EXPECT_EQ(std::string(bytes, 3), "a#z");
    EXPECT_EQ(WideCharToMultiByte(g_nLatin, 0, L"a\xE9z", 3, bytes, 10, nullptr, &bUsed), 3);
    EXPECT_FALSE(bUsed);
    EXPECT_EQ(Bytes(g_nGbk, L"\xE9\x0E01"), "\xA8\xA6?");
}

TEST(CodePageTest, LookAlikesStandForCharactersThatAreMissing) {
    EXPECT_EQ(Bytes(g_nLatin, L"\x0100\x2002\xFF21\xFF1F\x0301"), "A A?\xB4");
    EXPECT_EQ(Bytes(g_nLatin, L"\U0001F600"), "??");
}

TEST(CodePageTest, MarksAreComposedOnRequest) {
    EXPECT_EQ(Bytes(g_nLatin, L"e\x0301x", WC_COMPOSITECHECK), "\xE9x");
    EXPECT_EQ(Bytes(g_nLatin, L"e\x0301x"), "e\xB4x");
    EXPECT_EQ(Bytes(g_nGbk, L"a\x030C", WC_COMPOSITECHECK), "\xA8\xA3");
    // What can't be composed stays apart, and so does what the code page has not composed.
    EXPECT_EQ(Bytes(g_nLatin, L"4\x0301", WC_COMPOSITECHECK), "4\xB4");
    EXPECT_EQ(Bytes(g_nLatin, L"g\x0301z", WC_COMPOSITECHECK), "g\xB4z");
}

TEST(CodePageTest, UnpairedSurrogatesBecomeTheReplacementInUtf8) {
    const wchar_t surrogates[] = {L'a', wchar_t(0xD83D), L'b', wchar_t(0xDE00)};
    EXPECT_EQ(Bytes(CP_UTF8, std::wstring(surrogates, 4)), "a\xEF\xBF\xBD"
                                                           "b\xEF\xBF\xBD");
    SetLastError(0);
    EXPECT_EQ(WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, surrogates, 4, nullptr, 0, nullptr, nullptr), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION));
    EXPECT_EQ(Bytes(g_nLatin, std::wstring(surrogates, 4)), "a?b?");
}

TEST(CodePageTest, BytesThatAreNoUtf8BecomeReplacements) {
    EXPECT_EQ(Wide(CP_UTF8, "a\xFFz"), L"a\xFFFDz");
    EXPECT_EQ(Wide(CP_UTF8, "\xE4\xB8"), L"\xFFFD");
    EXPECT_EQ(Wide(CP_UTF8, "\xE4\xB8z"), L"\xFFFDz");
    EXPECT_EQ(Wide(CP_UTF8, "\xC0\x80"), L"\xFFFD\xFFFD");
    EXPECT_EQ(Wide(CP_UTF8, "\xF5"), L"\xFFFD");
    SetLastError(0);
    EXPECT_EQ(Wide(CP_UTF8, "a\xFFz", MB_ERR_INVALID_CHARS), L"");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NO_UNICODE_TRANSLATION));
}

TEST(CodePageTest, TheAnsiCodePageIs1252) {
    EXPECT_EQ(GetACP(), g_nLatin);
    EXPECT_EQ(Bytes(CP_ACP, L"\x20AC", WC_COMPOSITECHECK), "\x80");
}

TEST(RunTimeTest, WtoiReadsTheNumberAtTheStart) {
    const struct {
        const wchar_t* pszText;
        int nExpected;
    } cases[] = {
        {L"12", 12},
        {L" \t12", 12},
        {L"-12", -12},
        {L"+12", 12},
        {L"12abc", 12},
        {L"abc", 0},
        {L"", 0},
        {L"-", 0},
        {L"- 1", 0},
        {L"0x10", 0},
        {L"2147483647", INT_MAX},
        {L"2147483648", INT_MAX},
        {L"-2147483648", INT_MIN},
        {L"-2147483649", INT_MIN},
        {L"99999999999999999999", INT_MAX},
        {L"1.9", 1},
        {L"007", 7},
        {L"\x85\xA0\x3000"
         L"12",
         12},
        {L"\x200B"
         L"12",
         0},
    };
    for (const auto& row : cases)
        EXPECT_EQ(_wtoi(row.pszText), row.nExpected)
            << std::string(row.pszText, row.pszText + std::wcslen(row.pszText));
}

TEST(RunTimeTest, GuidsCompareByValue) {
    const GUID guid = {0x8164BB40, 0x6B6A, 0x4707, {0x88, 0xB7, 0x38, 0x6B, 0xCB, 0x0D, 0x1B, 0x0F}};
    GUID other = guid;
    EXPECT_TRUE(guid == other && IsEqualGUID(guid, other));
    other.Data4[7]++;
    EXPECT_TRUE(guid != other && !IsEqualGUID(guid, other));
    static_assert(sizeof(GUID) == 16);
}
