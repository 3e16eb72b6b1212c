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

TEST(CodePageTest, TextsBecomeBytesAndBack) {
    const struct {
        UINT nCodePage;
        std::wstring strText;
        std::string strBytes;
    } rows[] = {{CP_UTF8, L"a\xE9\x4E2D\U0001F600", "a\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80"},
                {CP_ACP, L"\xE9\x20AC", "\xE9\x80"}, // which is 1252 unless chosen otherwise
                {LATIN, L"a\xE9\x20AC\x81", "a\xE9\x80\x81"},
                {GBK, L"a\x4E2D\x6587\x20AC", "a\xD6\xD0\xCE\xC4\x80"}};
    for (const auto& [nCodePage, strText, strBytes] : rows) {
        EXPECT_EQ(Bytes(nCodePage, strText), strBytes) << nCodePage;
        EXPECT_EQ(Wide(nCodePage, strBytes), strText) << nCodePage;
    }
    EXPECT_EQ(GetACP(), LATIN);
    // Marks are composed on request; look-alikes stand for what is missing.
    EXPECT_EQ(Bytes(LATIN, L"e\x0301x\x0100", WC_COMPOSITECHECK), "\xE9xA");
    EXPECT_EQ(Bytes(LATIN, L"e\x0301x\x4E2D"), "e\xB4x?");
}

TEST(CodePageTest, LengthMinusOneIncludesTheZero) {
    char bytes[10];
    wchar_t wide[10];
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"abc", -1, nullptr, 0, nullptr, nullptr), 4);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, L"abc", -1, bytes, 10, nullptr, nullptr), 4);
    EXPECT_STREQ(bytes, "abc");
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, nullptr, 0), 4);
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "abc", -1, wide, 10), 4);
    EXPECT_STREQ(wide, L"abc");
}

TEST(CodePageTest, WrongArgumentsAndTooSmallBuffersAreRefused) {
    char bytes[4];
    wchar_t wide[4];
    for (const UINT nCodePage : {UINT(CP_UTF8), LATIN, GBK}) {
        ExpectError(WideCharToMultiByte(nCodePage, 0, L"abcd", -1, bytes, 4, nullptr, nullptr),
                    ERROR_INSUFFICIENT_BUFFER);
        ExpectError(MultiByteToWideChar(nCodePage, 0, "abcd", -1, wide, 4), ERROR_INSUFFICIENT_BUFFER);
        EXPECT_EQ(WideCharToMultiByte(nCodePage, 0, L"abcd", 4, bytes, 4, nullptr, nullptr), 4);
        EXPECT_EQ(MultiByteToWideChar(nCodePage, 0, "abcd", 4, wide, 4), 4);
    }
    const struct {
        UINT nCodePage;
        bool bText;
        int nLength;
        bool bRoom;
        int nRoom;
    } rows[] = {{CP_ACP, false, 1, true, 4},
                {CP_ACP, true, 0, true, 4},
                {CP_ACP, true, 1, false, 4},
                {CP_ACP, true, 1, true, -1},
                {64999, true, 1, true, 4}};
    for (const auto& [nCodePage, bText, nLength, bRoom, nRoom] : rows) {
        ExpectError(WideCharToMultiByte(nCodePage, 0, bText ? L"a" : nullptr, nLength, bRoom ? bytes : nullptr, nRoom,
                                        nullptr, nullptr),
                    ERROR_INVALID_PARAMETER);
        ExpectError(MultiByteToWideChar(nCodePage, 0, bText ? "a" : nullptr, nLength, bRoom ? wide : nullptr, nRoom),
                    ERROR_INVALID_PARAMETER);
    }
}

TEST(CodePageTest, WhatIsNoUnicodeIsReplacedOrRefused) {
    const std::wstring strHalves = {L'a', wchar_t(0xD83D), L'b', wchar_t(0xDE00)};
    EXPECT_EQ(Bytes(CP_UTF8, strHalves), "a\xEF\xBF\xBD"
                                         "b\xEF\xBF\xBD");
    EXPECT_EQ(Bytes(LATIN, strHalves), "a?b?");
    ExpectError(static_cast<int>(Bytes(CP_UTF8, strHalves, WC_ERR_INVALID_CHARS).size()), ERROR_NO_UNICODE_TRANSLATION);
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

TEST(GuidTest, ComparesByValue) {
    const GUID guid = {0x8164BB40, 0x6B6A, 0x4707, {0x88, 0xB7, 0x38, 0x6B, 0xCB, 0x0D, 0x1B, 0x0F}};
    GUID other = guid;
    EXPECT_TRUE(guid == other && IsEqualGUID(guid, other));
    other.Data4[7]++;
    EXPECT_TRUE(guid != other && !IsEqualGUID(guid, other));
}
