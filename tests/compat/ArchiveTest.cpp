#include "CompatTest.h"

#include <vector>

namespace {

void Fill(CMemFile& file, const std::vector<BYTE>& bytes) {
    file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
    file.SeekToBegin();
}

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
    CMemFile file;
    Fill(file, StoredBytes(strText));
    CArchive ar(&file, CArchive::load);
    CString strLoaded(L"old");
    ar >> strLoaded;
    BYTE nBehind = 0;
    EXPECT_EQ(file.Read(&nBehind, 1), 0u) << "all of it must be read";
    return strLoaded;
}

// The cause of the exception that loading a text from these bytes raises.
int LoadCause(const std::vector<BYTE>& bytes) {
    CMemFile file;
    Fill(file, bytes);
    CArchive ar(&file, CArchive::load);
    CString strText(L"kept");
    try {
        ar >> strText;
    } catch (CArchiveException* pException) {
        const int nCause = pException->m_cause;
        pException->Delete();
        EXPECT_EQ(strText, L"kept");
        return nCause;
    }
    return CArchiveException::none;
}

} // namespace

TEST(MemFileTest, ReadsWhatWasWrittenAndStopsAtTheEnd) {
    CMemFile file;
    file.Write("0123456789", 10);
    EXPECT_EQ(file.GetLength(), 10u);
    char szBytes[8] = {};
    EXPECT_EQ(file.Read(szBytes, 1), 0u);
    file.SeekToBegin();
    EXPECT_EQ(file.Read(szBytes, 7), 7u);
    EXPECT_STREQ(szBytes, "0123456");
    EXPECT_EQ(file.Read(szBytes, 7), 3u);
    EXPECT_STREQ(szBytes, "7893456");
    file.SeekToBegin();
    file.Write("ab", 2);
    EXPECT_EQ(file.GetLength(), 10u);
}

TEST(MemFileTest, TakesAnotherLength) {
    CMemFile file;
    file.Write("abc", 3);
    file.SetLength(2);
    file.Write("d", 1);
    file.SetLength(4);
    EXPECT_EQ(Contents(file), (std::vector<BYTE>{'a', 'b', 'd', 0}));
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

TEST(ArchiveTest, SeveralTextsFollowOneAnother) {
    CMemFile file;
    CArchive out(&file, CArchive::store);
    out << L"first" << CString() << L"third";
    out.Close();
    file.SeekToBegin();
    CArchive in(&file, CArchive::load);
    CString strFirst;
    CString strSecond(L"old");
    CString strThird;
    in >> strFirst >> strSecond >> strThird;
    EXPECT_EQ(strFirst, L"first");
    EXPECT_EQ(strSecond, L"");
    EXPECT_EQ(strThird, L"third");
}

TEST(ArchiveTest, LoadingPastTheEndIsReported) {
    std::vector<BYTE> bytes = StoredBytes(L"cut");
    while (!bytes.empty()) {
        bytes.pop_back();
        EXPECT_EQ(LoadCause(bytes), CArchiveException::endOfFile) << bytes.size();
    }
}

TEST(ArchiveTest, BytesThatAreNoTextAreReported) {
    EXPECT_EQ(LoadCause({3, 'a', 'b', 'c'}), CArchiveException::badClass);
    EXPECT_EQ(LoadCause({0xFF, 5, 0, 'a', 'b'}), CArchiveException::badClass);
    EXPECT_EQ(LoadCause({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}), CArchiveException::badClass);
}

TEST(ArchiveTest, AHugeLengthInTheDataIsNotAllocated) {
    EXPECT_EQ(LoadCause({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 'x', 0}),
              CArchiveException::endOfFile);
}

TEST(ArchiveTest, TheWrongDirectionIsReported) {
    CMemFile file;
    CString strText;
    CArchive out(&file, CArchive::store);
    EXPECT_THROWS_FRAMEWORK(out >> strText, CArchiveException);
    CArchive in(&file, CArchive::load);
    EXPECT_THROWS_FRAMEWORK(in << strText, CArchiveException);
    in.Close();
    EXPECT_THROWS_FRAMEWORK(in >> strText, CInvalidArgException);
    EXPECT_THROWS_FRAMEWORK(CArchive(nullptr, CArchive::load), CInvalidArgException);
}
