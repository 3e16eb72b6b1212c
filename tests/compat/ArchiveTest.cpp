#include "CompatTest.h"

#include <limits>
#include <vector>

namespace {

std::vector<BYTE> Contents(CMemFile& file) {
    std::vector<BYTE> bytes(static_cast<std::size_t>(file.GetLength()));
    file.SeekToBegin();
    EXPECT_EQ(file.Read(bytes.data(), static_cast<UINT>(bytes.size())), bytes.size());
    return bytes;
}

std::vector<BYTE> StoredBytes(const CString& strText) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    ar << strText;
    ar.Close();
    return Contents(file);
}

CString RoundTrip(const CString& strText) {
    std::vector<BYTE> bytes = StoredBytes(strText);
    CMemFile file(bytes.data(), static_cast<UINT>(bytes.size()));
    CArchive ar(&file, CArchive::load);
    CString strLoaded(L"old");
    ar >> strLoaded;
    EXPECT_EQ(file.GetPosition(), bytes.size());
    return strLoaded;
}

} // namespace

TEST(MemFileTest, ReadsWhatWasWrittenAndStopsAtTheEnd) {
    CMemFile file(4);
    file.Write("0123456789", 10);
    EXPECT_EQ(file.GetLength(), 10u);
    EXPECT_EQ(file.Seek(-3, CFile::end), 7u);
    char szBytes[8] = {};
    EXPECT_EQ(file.Read(szBytes, sizeof(szBytes)), 3u);
    EXPECT_STREQ(szBytes, "789");
    EXPECT_EQ(file.Read(szBytes, 1), 0u);
    EXPECT_EQ(file.Seek(2, CFile::begin), 2u);
    EXPECT_EQ(file.Seek(2, CFile::current), 4u);
    EXPECT_THROWS_FRAMEWORK(file.Seek(-5, CFile::current), CInvalidArgException);
    EXPECT_EQ(file.GetPosition(), 4u);
}

TEST(MemFileTest, FillsAGapWithZeros) {
    CMemFile file;
    file.Write("a", 1);
    file.Seek(3, CFile::begin);
    file.Write("b", 1);
    EXPECT_EQ(Contents(file), (std::vector<BYTE>{'a', 0, 0, 'b'}));
}

TEST(MemFileTest, CallersBytesCannotGrow) {
    BYTE bytes[4] = {1, 2, 3, 4};
    CMemFile file(bytes, sizeof(bytes));
    EXPECT_EQ(file.GetLength(), 4u);
    file.Seek(3, CFile::begin);
    EXPECT_THROWS_FRAMEWORK(file.Write("xy", 2), CMemoryException);
    file.Write("x", 1);
    EXPECT_EQ(bytes[3], 'x');
    EXPECT_EQ(file.Detach(), bytes);
    EXPECT_EQ(file.GetLength(), 0u);
}

TEST(ArchiveTest, NumbersComeBack) {
    CMemFile file;
    CArchive out(&file, CArchive::store);
    EXPECT_TRUE(out.IsStoring());
    out << BYTE(200) << 'c' << short(-2) << WORD(65535) << -70000 << 4000000000u << LONGLONG(-5000000000LL)
        << ULONGLONG(18446744073709551615ULL) << 1.5f << -2.25 << true;
    out.Close();
    file.SeekToBegin();

    CArchive in(&file, CArchive::load);
    EXPECT_TRUE(in.IsLoading());
    BYTE nByte = 0;
    char ch = 0;
    short nShort = 0;
    WORD nWord = 0;
    int nInt = 0;
    unsigned nUnsigned = 0;
    LONGLONG nLong = 0;
    ULONGLONG nUnsignedLong = 0;
    float fFloat = 0;
    double fDouble = 0;
    bool bBool = false;
    in >> nByte >> ch >> nShort >> nWord >> nInt >> nUnsigned >> nLong >> nUnsignedLong >> fFloat >> fDouble >> bBool;
    EXPECT_EQ(nByte, 200);
    EXPECT_EQ(ch, 'c');
    EXPECT_EQ(nShort, -2);
    EXPECT_EQ(nWord, 65535);
    EXPECT_EQ(nInt, -70000);
    EXPECT_EQ(nUnsigned, 4000000000u);
    EXPECT_EQ(nLong, -5000000000LL);
    EXPECT_EQ(nUnsignedLong, 18446744073709551615ULL);
    EXPECT_EQ(fFloat, 1.5f);
    EXPECT_EQ(fDouble, -2.25);
    EXPECT_TRUE(bBool);
    EXPECT_EQ(file.GetPosition(), file.GetLength());
}

TEST(ArchiveTest, NumbersAreLittleEndian) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    ar << 0x01020304 << LONGLONG(5);
    EXPECT_EQ(Contents(file), (std::vector<BYTE>{4, 3, 2, 1, 5, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(ArchiveTest, TextsAreStoredAsCountedUtf16) {
    EXPECT_EQ(StoredBytes(CString()), (std::vector<BYTE>{0xFF, 0xFE, 0xFF, 0}));
    EXPECT_EQ(StoredBytes(L"a\x4E2D"), (std::vector<BYTE>{0xFF, 0xFE, 0xFF, 2, 'a', 0, 0x2D, 0x4E}));
    const std::wstring strBeyond = L"\U0001F600";
    EXPECT_EQ(StoredBytes(strBeyond.c_str()), (std::vector<BYTE>{0xFF, 0xFE, 0xFF, 2, 0x3D, 0xD8, 0x00, 0xDE}));
}

TEST(ArchiveTest, TextsOfAllLengthsComeBack) {
    for (const int nLength : {0, 1, 254, 255, 256, 65533, 65534, 65535, 70000})
        EXPECT_EQ(RoundTrip(CString(L'x', nLength)), CString(L'x', nLength)) << nLength;
    EXPECT_EQ(RoundTrip(L"\U0001F600 \x540D"), L"\U0001F600 \x540D");
    EXPECT_EQ(RoundTrip(CString(L"a\0b", 3)).GetLength(), 3);
}

TEST(ArchiveTest, LoadsTextsOfOneByteCharacters) {
    BYTE bytes[] = {3, 'a', 'b', 'c'};
    CMemFile file(bytes, sizeof(bytes));
    CArchive ar(&file, CArchive::load);
    CString strText;
    ar >> strText;
    EXPECT_EQ(strText, L"abc");
}

TEST(ArchiveTest, LoadingPastTheEndIsReported) {
    BYTE bytes[] = {1, 2, 3};
    CMemFile file(bytes, sizeof(bytes));
    CArchive ar(&file, CArchive::load);
    int nValue = 77;
    try {
        ar >> nValue;
        FAIL() << "must throw";
    } catch (CArchiveException* pException) {
        EXPECT_EQ(pException->m_cause, CArchiveException::endOfFile);
        pException->Delete();
    }
    EXPECT_EQ(nValue, 77);
}

TEST(ArchiveTest, AHugeLengthInTheDataIsNotAllocated) {
    BYTE bytes[] = {0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 'x', 0};
    CMemFile file(bytes, sizeof(bytes));
    CArchive ar(&file, CArchive::load);
    CString strText(L"kept");
    EXPECT_THROWS_FRAMEWORK(ar >> strText, CArchiveException);
    EXPECT_EQ(strText, L"kept");
}

TEST(ArchiveTest, TheWrongDirectionIsReported) {
    CMemFile file;
    int nValue = 0;
    CArchive out(&file, CArchive::store);
    EXPECT_THROWS_FRAMEWORK(out >> nValue, CArchiveException);
    CArchive in(&file, CArchive::load);
    EXPECT_THROWS_FRAMEWORK(in << nValue, CArchiveException);
    in.Close();
    EXPECT_THROWS_FRAMEWORK(in >> nValue, CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(CArchive(nullptr, CArchive::load), CInvalidArgException);
}
