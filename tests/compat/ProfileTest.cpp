// Initialisation files: their life. What is read out of which text, system_outputs prints.

#include "CompatTest.h"

namespace {

UINT Read(const std::wstring& strPath, int nDefault = 7) {
    return GetPrivateProfileIntW(L"S", L"Key", nDefault, strPath.c_str());
}

} // namespace

TEST(ProfileTest, LinesOfAnyLengthAreRead) {
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
