// Initialisation files. The table is the same for Windows and for the Linux subset, so that both builds prove it.

#include "CompatTest.h"

namespace {

struct SIniCase {
    const char* pszFile;
    const wchar_t* pszKey; // in section "S"
    int nDefault;
    unsigned nExpected;
};

const SIniCase g_cases[] = {
    // plain numbers, blanks, case
    {"[S]\nKey=12\n", L"Key", 7, 12},
    {"[s]\r\nkEY = 12 \r\n", L"Key", 7, 12},
    {"  [ S ]  \n\t Key\t=\t12\t\n", L"Key", 7, 12},
    {"[S]\nTwo Words=3\n", L" Two Words ", 7, 3},
    {"[S]\nKey=12", L"Key", 7, 12},
    {"[S]\rKey=12\rOther=1\r", L"Key", 7, 12},
    // what stands behind or before the digits
    {"[S]\nKey=12abc\n", L"Key", 7, 12},
    {"[S]\nKey=12 ; remark\n", L"Key", 7, 12},
    {"[S]\nKey=abc\n", L"Key", 7, 0},
    {"[S]\nKey=1.9\n", L"Key", 7, 1},
    {"[S]\nKey=true\n", L"Key", 7, 0},
    // signs
    {"[S]\nKey=-1\n", L"Key", 7, 4294967295u},
    {"[S]\nKey=+5\n", L"Key", 7, 5},
    {"[S]\nKey=--5\n", L"Key", 7, 0},
    {"[S]\nKey=- 5\n", L"Key", 7, 0},
    {"[S]\nKey=-\n", L"Key", 7, 0},
    // bases
    {"[S]\nKey=0x1F\n", L"Key", 7, 31},
    {"[S]\nKey=0xg\n", L"Key", 7, 0},
    {"[S]\nKey=-0x10\n", L"Key", 7, 4294967280u},
    {"[S]\nKey=0X1F\n", L"Key", 7, 0},
    {"[S]\nKey=017\n", L"Key", 7, 17},
    {"[S]\nKey=0o17\n", L"Key", 7, 15},
    {"[S]\nKey=0b101\n", L"Key", 7, 5},
    // beyond 32 bits
    {"[S]\nKey=4294967295\n", L"Key", 7, 4294967295u},
    {"[S]\nKey=4294967296\n", L"Key", 7, 0},
    {"[S]\nKey=4294967301\n", L"Key", 7, 5},
    {"[S]\nKey=0x1ffffffff\n", L"Key", 7, 4294967295u},
    {"[S]\nKey=70000\n", L"Key", 7, 70000},
    // quotation marks
    {"[S]\nKey=\"12\"\n", L"Key", 7, 12},
    {"[S]\nKey='12'\n", L"Key", 7, 12},
    {"[S]\nKey=\" 12 \"\n", L"Key", 7, 12},
    {"[S]\nKey=\"12\n", L"Key", 7, 0},
    {"[S]\nKey=\"12'\n", L"Key", 7, 0},
    {"[S]\nKey=\"\n", L"Key", 7, 0},
    {"[S]\nKey=\"\"\n", L"Key", 7, 7},
    // nothing there
    {"[S]\nKey=\n", L"Key", 7, 7},
    {"[S]\nKey=   \n", L"Key", 7, 7},
    {"[S]\nKey\n", L"Key", 7, 7},
    {"[S]\nOther=1\n", L"Key", 7, 7},
    {"[T]\nKey=1\n", L"Key", 7, 7},
    {"Key=1\n", L"Key", 7, 7},
    {"", L"Key", 7, 7},
    {"[S]\n", L"Key", -1, 4294967295u},
    // comments, order, several of one name
    {"; [S]\n[S]\n;Key=1\nKey=2\n", L"Key", 7, 2},
    {"[S]\n  ;Key=1\n\n\nKey=2\n", L"Key", 7, 2},
    {"[S]\nKey=1\nKey=2\n", L"Key", 7, 1},
    {"[S]\nKey=1\nKEY=2\n", L"Key", 7, 1},
    {"[S]\nKey=\nKey=2\n", L"Key", 7, 7},
    {"[S]\nKey=1\n[S]\nKey=2\n", L"Key", 7, 1},
    {"[S]\nOther=1\n[S]\nKey=2\n", L"Key", 7, 7},
    {"[S]\nOther=1\n[T]\nKey=3\n[s]\nKey=2\n", L"Key", 7, 7},
    {"[T]\nKey=3\n[S]\nKey=2\n", L"Key", 7, 2},
    // characters with a meaning elsewhere
    {"[S]\nKey=5=6\n", L"Key", 7, 5},
    {"[S]\nKey:1\n", L"Key", 7, 7},
    {"[S]\nKey=5\n  continued\n", L"Key", 7, 5},
    {"[S]\nKey=<<<END\n5\nEND\n", L"Key", 7, 0},
    {"[S\nKey=1\n", L"Key", 7, 7},
    {"[S] trailing\nKey=1\n", L"Key", 7, 1},
    {"[S]]\nKey=1\n[[S]\nKey=2\n", L"Key", 7, 7},
    {"[S]\nKey\nKey=2\n", L"Key", 7, 7},
    {"[S]\n#Key=1\nKey=\f2\f\n", L"Key", 7, 2},
    {"[S]\n#Key=1\nKey=2\n", L"#Key", 7, 1},
    // byte order marks
    {"\xEF\xBB\xBF[S]\nKey=12\n", L"Key", 7, 12},
    {"\xEF\xBB\xBF[S]\n\xE4\xB8\xAD=12\n", L"\x4E2D", 7, 12},
    {"[S]\n\xE9=12\n", L"\xE9", 7, 12},
};

std::string Utf16File(const std::string& strText, bool bBigEndian) {
    std::string strBytes = bBigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char ch : strText) {
        strBytes += bBigEndian ? '\0' : ch;
        strBytes += bBigEndian ? ch : '\0';
    }
    return strBytes;
}

} // namespace

TEST(ProfileTest, NumbersAreReadAsOnWindows) {
    int nFile = 0;
    for (const SIniCase& row : g_cases) {
        const std::string strName = "profile" + std::to_string(nFile++) + ".ini";
        const CTemporaryFile file(strName.c_str(), row.pszFile);
        EXPECT_EQ(GetPrivateProfileIntW(L"S", row.pszKey, row.nDefault, file.Path().c_str()), row.nExpected)
            << row.pszFile;
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
}

TEST(ProfileTest, TheFileIsReadAnewEachTime) {
    const std::wstring strPath = CTemporaryFile("anew.ini", "").Path();
    {
        const CTemporaryFile file("anew.ini", "[S]\nKey=1\n");
        EXPECT_EQ(GetPrivateProfileIntW(L"S", L"Key", 0, strPath.c_str()), 1u);
    }
    EXPECT_EQ(GetPrivateProfileIntW(L"S", L"Key", 0, strPath.c_str()), 0u);
}

TEST(ProfileTest, LongLinesAreReadWhole) {
    const CTemporaryFile file("long.ini", "[S]\nLong=7" + std::string(5000, 'x') + "\nKey=5\n");
    EXPECT_EQ(GetPrivateProfileIntW(L"S", L"Long", 0, file.Path().c_str()), 7u);
    EXPECT_EQ(GetPrivateProfileIntW(L"S", L"Key", 0, file.Path().c_str()), 5u);
}
