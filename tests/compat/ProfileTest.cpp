// Initialisation files: their life. What is read out of which text, system_outputs prints.

#include "CompatTest.h"

namespace {

UINT Read(const std::wstring& strPath, int nDefault = 7) {
    return GetPrivateProfileIntW(L"S", L"Key", nDefault, strPath.c_str());
}

} // namespace

TEST(ProfileTest, NumbersAreReadAsOnWindows) {
    const std::pair<const char*, UINT> rows[] = {
        {"  [ s ]\r\n\t kEY\t=\t12abc ; remark\r\n", 12},
        {"[S]\nKey=-1\n", 4294967295u},
        {"[S]\nKey=0x1F\n", 31},
        {"[S]\nKey=4294967301\n", 5},
        {"[S]\nKey=\" 12 \"\n", 12},
        {"[S]\nKey=abc\n", 0},
        {"[S]\nKey=\nKey=2\n", 7},
        {"[S]\n;Key=1\nKey=2\nKEY=3\n", 2},
        {"[T]\nKey=1\n", 7},
        {"\xEF\xBB\xBF[S]\nKey=12\n", 12},
    };
    int nFile = 0;
    for (const auto& [pszFile, nExpected] : rows) {
        const CTemporaryFile file(("profile" + std::to_string(nFile++) + ".ini").c_str(), pszFile);
        EXPECT_EQ(Read(file.Path()), nExpected) << pszFile;
    }
    const CTemporaryFile file("long.ini", "[S]\nLong=7" + std::string(5000, 'x') + "\nKey=5\n");
    EXPECT_EQ(Read(file.Path()), 5u);
}

TEST(ProfileTest, TheFileIsReadAnewEachTimeAndMayBeMissing) {
    const std::wstring strPath = CTemporaryFile("anew.ini", "").Path();
    {
        const CTemporaryFile file("anew.ini", "[S]\nKey=1\n");
        EXPECT_EQ(Read(strPath), 1u);
    }
    EXPECT_EQ(Read(strPath, -3), static_cast<UINT>(-3));
}
