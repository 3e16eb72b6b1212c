// Initialisation files. The table is the same for Windows and for the Linux subset, so that both builds prove it.

#include "CompatTest.h"

#include <vector>

namespace {

struct SIniCase {
    const char* pszFile;
    const wchar_t* pszKey; // in section "S"
    int nDefault;
    unsigned nExpected;
    const wchar_t* pszExpected; // as text, with the default text "none"
};

const SIniCase g_cases[] = {
    // plain numbers, blanks, case
    {"[S]\nKey=12\n", L"Key", 7, 12, L"12"},
    {"[s]\r\nkEY = 12 \r\n", L"Key", 7, 12, L"12"},
    {"  [ S ]  \n\t Key\t=\t12\t\n", L"Key", 7, 12, L"12"},
    {"[S]\nTwo Words=3\n", L" Two Words ", 7, 3, L"3"},
    {"[S]\nKey=12", L"Key", 7, 12, L"12"},
    {"[S]\rKey=12\rOther=1\r", L"Key", 7, 12, L"12"},
    // what stands behind or before the digits
    {"[S]\nKey=12abc\n", L"Key", 7, 12, L"12abc"},
    {"[S]\nKey=12 ; remark\n", L"Key", 7, 12, L"12 ; remark"},
    {"[S]\nKey=abc\n", L"Key", 7, 0, L"abc"},
    {"[S]\nKey=1.9\n", L"Key", 7, 1, L"1.9"},
    {"[S]\nKey=true\n", L"Key", 7, 0, L"true"},
    // signs
    {"[S]\nKey=-1\n", L"Key", 7, 4294967295u, L"-1"},
    {"[S]\nKey=+5\n", L"Key", 7, 5, L"+5"},
    {"[S]\nKey=--5\n", L"Key", 7, 0, L"--5"},
    {"[S]\nKey=- 5\n", L"Key", 7, 0, L"- 5"},
    {"[S]\nKey=-\n", L"Key", 7, 0, L"-"},
    // bases
    {"[S]\nKey=0x1F\n", L"Key", 7, 31, L"0x1F"},
    {"[S]\nKey=0xg\n", L"Key", 7, 0, L"0xg"},
    {"[S]\nKey=-0x10\n", L"Key", 7, 4294967280u, L"-0x10"},
    {"[S]\nKey=0X1F\n", L"Key", 7, 0, L"0X1F"},
    {"[S]\nKey=017\n", L"Key", 7, 17, L"017"},
    {"[S]\nKey=0o17\n", L"Key", 7, 15, L"0o17"},
    {"[S]\nKey=0b101\n", L"Key", 7, 5, L"0b101"},
    // beyond 32 bits
    {"[S]\nKey=4294967295\n", L"Key", 7, 4294967295u, L"4294967295"},
    {"[S]\nKey=4294967296\n", L"Key", 7, 0, L"4294967296"},
    {"[S]\nKey=4294967301\n", L"Key", 7, 5, L"4294967301"},
    {"[S]\nKey=0x1ffffffff\n", L"Key", 7, 4294967295u, L"0x1ffffffff"},
    {"[S]\nKey=70000\n", L"Key", 7, 70000, L"70000"},
    // quotation marks
    {"[S]\nKey=\"12\"\n", L"Key", 7, 12, L"12"},
    {"[S]\nKey='12'\n", L"Key", 7, 12, L"12"},
    {"[S]\nKey=\" 12 \"\n", L"Key", 7, 12, L" 12 "},
    {"[S]\nKey=\"12\n", L"Key", 7, 0, L"\"12"},
    {"[S]\nKey=\"12'\n", L"Key", 7, 0, L"\"12'"},
    {"[S]\nKey=\"\n", L"Key", 7, 0, L"\""},
    {"[S]\nKey=\"\"\n", L"Key", 7, 7, L""},
    // nothing there
    {"[S]\nKey=\n", L"Key", 7, 7, L""},
    {"[S]\nKey=   \n", L"Key", 7, 7, L""},
    {"[S]\nKey\n", L"Key", 7, 7, L"none"},
    {"[S]\nOther=1\n", L"Key", 7, 7, L"none"},
    {"[T]\nKey=1\n", L"Key", 7, 7, L"none"},
    {"Key=1\n", L"Key", 7, 7, L"none"},
    {"", L"Key", 7, 7, L"none"},
    {"[S]\n", L"Key", -1, 4294967295u, L"none"},
    // comments, order, several of one name
    {"; [S]\n[S]\n;Key=1\nKey=2\n", L"Key", 7, 2, L"2"},
    {"[S]\n  ;Key=1\n\n\nKey=2\n", L"Key", 7, 2, L"2"},
    {"[S]\nKey=1\nKey=2\n", L"Key", 7, 1, L"1"},
    {"[S]\nKey=1\nKEY=2\n", L"Key", 7, 1, L"1"},
    {"[S]\nKey=\nKey=2\n", L"Key", 7, 7, L""},
    {"[S]\nKey=1\n[S]\nKey=2\n", L"Key", 7, 1, L"1"},
    {"[S]\nOther=1\n[S]\nKey=2\n", L"Key", 7, 7, L"none"},
    {"[S]\nOther=1\n[T]\nKey=3\n[s]\nKey=2\n", L"Key", 7, 7, L"none"},
    {"[T]\nKey=3\n[S]\nKey=2\n", L"Key", 7, 2, L"2"},
    // characters with a meaning elsewhere
    {"[S]\nKey=a=b\n", L"Key", 7, 0, L"a=b"},
    {"[S]\nKey:1\n", L"Key", 7, 7, L"none"},
    {"[S]\nKey=5\n  continued\n", L"Key", 7, 5, L"5"},
    {"[S]\nKey=<<<END\n5\nEND\n", L"Key", 7, 0, L"<<<END"},
    {"[S]\nKey=a\\n\n", L"Key", 7, 0, L"a\\n"},
    {"[S\nKey=1\n", L"Key", 7, 7, L"none"},
    {"[S] trailing\nKey=1\n", L"Key", 7, 1, L"1"},
    {"[S]]\nKey=1\n[[S]\nKey=2\n", L"Key", 7, 7, L"none"},
    {"[S]\nKey\nKey=2\n", L"Key", 7, 7, L"none"},
    {"[S]\n#Key=1\nKey=\f2\f\n", L"Key", 7, 2, L"2"},
    {"[S]\n#Key=1\nKey=2\n", L"#Key", 7, 1, L"1"},
    // byte order marks
    {"\xEF\xBB\xBF[S]\nKey=12\n", L"Key", 7, 12, L"12"},
    {"\xEF\xBB\xBF[S]\nKey=\xE4\xB8\xAD\n", L"Key", 7, 0, L"\x4E2D"},
    {"[S]\nKey=\xE9\n", L"Key", 7, 0, L"\xE9"},
};

std::string Utf16File(const std::string& strText, bool bBigEndian) {
    std::string strBytes = bBigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char ch : strText) {
        strBytes += bBigEndian ? '\0' : ch;
        strBytes += bBigEndian ? ch : '\0';
    }
    return strBytes;
}

std::wstring TextOf(const wchar_t* pszSection, const wchar_t* pszKey, const wchar_t* pszDefault,
                    const std::wstring& strPath) {
    wchar_t szText[100];
    const DWORD nLength = GetPrivateProfileStringW(pszSection, pszKey, pszDefault, szText, 100, strPath.c_str());
    return std::wstring(szText, nLength);
}

} // namespace

TEST(ProfileTest, NumbersAndTextsAreReadAsOnWindows) {
    int nFile = 0;
    for (const SIniCase& row : g_cases) {
        const std::string strName = "profile" + std::to_string(nFile++) + ".ini";
        const CTemporaryFile file(strName.c_str(), row.pszFile);
        EXPECT_EQ(GetPrivateProfileIntW(L"S", row.pszKey, row.nDefault, file.Path().c_str()), row.nExpected)
            << row.pszFile;
        EXPECT_EQ(TextOf(L"S", row.pszKey, L"none", file.Path()), row.pszExpected) << row.pszFile;
    }
}

TEST(ProfileTest, Utf16FilesAreRecognised) {
    for (const bool bBigEndian : {false, true}) {
        const CTemporaryFile file(bBigEndian ? "be.ini" : "le.ini", Utf16File("[S]\r\nKey=34\r\n", bBigEndian));
        EXPECT_EQ(GetPrivateProfileIntW(L"S", L"Key", 7, file.Path().c_str()), 34u) << bBigEndian;
    }
}

TEST(ProfileTest, AMissingFileGivesTheDefault) {
    const std::wstring strPath = CTemporaryFile("gone.ini", "").Path();
    EXPECT_EQ(GetPrivateProfileIntW(L"S", L"Key", -3, strPath.c_str()), static_cast<UINT>(-3));
    EXPECT_EQ(TextOf(L"S", L"Key", L"none", strPath), L"none");
}

TEST(ProfileTest, TheFileIsReadAnewEachTime) {
    const std::wstring strPath = CTemporaryFile("anew.ini", "").Path();
    {
        const CTemporaryFile file("anew.ini", "[S]\nKey=1\n");
        EXPECT_EQ(GetPrivateProfileIntW(L"S", L"Key", 0, strPath.c_str()), 1u);
    }
    EXPECT_EQ(GetPrivateProfileIntW(L"S", L"Key", 0, strPath.c_str()), 0u);
}

TEST(ProfileTest, TextsAreCutToTheBuffer) {
    const CTemporaryFile file("cut.ini", "[S]\nKey=12345\n");
    wchar_t szText[4] = {L'#', L'#', L'#', L'#'};
    EXPECT_EQ(GetPrivateProfileStringW(L"S", L"Key", L"", szText, 4, file.Path().c_str()), 3u);
    EXPECT_STREQ(szText, L"123");
    EXPECT_EQ(GetPrivateProfileStringW(L"S", L"Key", L"", szText, 1, file.Path().c_str()), 0u);
    EXPECT_STREQ(szText, L"");
}

TEST(ProfileTest, LongLinesAreReadWhole) {
    const CTemporaryFile file("long.ini", "[S]\nLong=" + std::string(5000, 'x') + "\nKey=5\n");
    std::vector<wchar_t> text(6000);
    EXPECT_EQ(GetPrivateProfileStringW(L"S", L"Long", L"", text.data(), 6000, file.Path().c_str()), 5000u);
    EXPECT_EQ(GetPrivateProfileIntW(L"S", L"Key", 0, file.Path().c_str()), 5u);
}

TEST(ProfileTest, NamesAreListed) {
    const CTemporaryFile file("names.ini", "[One]\nb=1\na=2\n[Two]\n");
    EXPECT_EQ(TextOf(nullptr, nullptr, L"", file.Path()), std::wstring(L"One\0Two\0", 8));
    EXPECT_EQ(TextOf(L"one", nullptr, L"", file.Path()), std::wstring(L"b\0a\0", 4));
    wchar_t szNames[5];
    EXPECT_EQ(GetPrivateProfileStringW(nullptr, nullptr, L"", szNames, 5, file.Path().c_str()), 3u);
    EXPECT_EQ(std::wstring(szNames, 5), std::wstring(L"One\0\0", 5));
}

TEST(ProfileTest, TrailingBlanksOfTheDefaultTextAreDropped) {
    const CTemporaryFile file("default.ini", "");
    EXPECT_EQ(TextOf(L"S", L"Key", L" none  ", file.Path()), L" none");
}
