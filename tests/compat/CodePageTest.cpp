// Code pages: the arguments and errors that system_outputs doesn't print. The expectations hold on Windows and on the
// Linux subset alike.

#include "CompatTest.h"

namespace {

constexpr UINT GBK = 936;
constexpr UINT LATIN = 1252;

void ExpectError(int nResult, DWORD nError) {
    EXPECT_EQ(nResult, 0);
    EXPECT_EQ(GetLastError(), nError);
    SetLastError(0);
}

std::string Bytes(UINT nCodePage, const std::wstring& strWide) {
    char bytes[100];
    const int nLength = WideCharToMultiByte(nCodePage, 0, strWide.data(), static_cast<int>(strWide.size()), bytes,
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

TEST(CodePageTest, TheAnsiCodePageIs1252UnlessChosenOtherwise) {
    EXPECT_EQ(GetACP(), LATIN);
    EXPECT_EQ(Bytes(CP_ACP, L"\xE9\x20AC"), "\xE9\x80");
    EXPECT_EQ(Wide(CP_ACP, "\xE9\x80"), L"\xE9\x20AC");
}

TEST(CodePageTest, TooSmallBuffersAreRefused) {
    char bytes[4];
    wchar_t wide[4];
    for (const UINT nCodePage : {UINT(CP_UTF8), LATIN, GBK}) {
        ExpectError(WideCharToMultiByte(nCodePage, 0, L"abcd", -1, bytes, 4, nullptr, nullptr),
                    ERROR_INSUFFICIENT_BUFFER);
        ExpectError(MultiByteToWideChar(nCodePage, 0, "abcd", -1, wide, 4), ERROR_INSUFFICIENT_BUFFER);
        EXPECT_EQ(WideCharToMultiByte(nCodePage, 0, L"abcd", 4, bytes, 4, nullptr, nullptr), 4);
        EXPECT_EQ(MultiByteToWideChar(nCodePage, 0, "abcd", 4, wide, 4), 4);
    }
}

TEST(CodePageTest, WhatIsNoUnicodeIsReplacedOrRefused) {
    const std::wstring strHalves = {L'a', wchar_t(0xD83D), L'b', wchar_t(0xDE00)};
    EXPECT_EQ(Bytes(CP_UTF8, strHalves), "a\xEF\xBF\xBD"
                                         "b\xEF\xBF\xBD");
    EXPECT_EQ(Bytes(LATIN, strHalves), "a?b?");
    const std::pair<const char*, const wchar_t*> rows[] = {{"a\xFFz", L"a\xFFFDz"},
                                                           {"\xE4\xB8", L"\xFFFD"},
                                                           {"\xE4\xB8z", L"\xFFFDz"},
                                                           {"\xC0\x80", L"\xFFFD\xFFFD"},
                                                           {"\xF5", L"\xFFFD"}};
    for (const auto& [pszBytes, pszText] : rows) {
        EXPECT_EQ(Wide(CP_UTF8, pszBytes), pszText) << pszBytes;
        ExpectError(static_cast<int>(Wide(CP_UTF8, pszBytes, MB_ERR_INVALID_CHARS).size()),
                    ERROR_NO_UNICODE_TRANSLATION);
    }
}
