// Texts in archives: their bytes, and the exceptions of those that are damaged.

#include "CompatTest.h"

#include <vector>

namespace {

using Bytes = std::vector<BYTE>;

Bytes StoredBytes(const CString& strText) {
    CMemFile file;
    CArchive ar(&file, CArchive::store);
    ar << strText;
    ar.Close();
    Bytes bytes(static_cast<std::size_t>(file.GetLength()));
    file.SeekToBegin();
    EXPECT_EQ(file.Read(bytes.data(), static_cast<UINT>(bytes.size())), bytes.size());
    return bytes;
}

// Loads a text from these bytes and nothing behind them. The cause of the exception; then the text stays as it was.
int Load(const Bytes& bytes, CString& strText) {
    CMemFile file;
    file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
    file.SeekToBegin();
    CArchive ar(&file, CArchive::load);
    strText = L"kept";
    try {
        ar >> strText;
    } catch (CArchiveException* pException) {
        const int nCause = pException->m_cause;
        pException->Delete();
        EXPECT_EQ(strText, L"kept");
        return nCause;
    }
    BYTE nBehind = 0;
    EXPECT_EQ(file.Read(&nBehind, 1), 0u);
    return CArchiveException::none;
}

} // namespace

TEST(MemFileTest, ReadsWhatWasWrittenAndTakesAnotherLength) {
    CMemFile file;
    file.Write("0123456789", 10);
    char szBytes[8] = {};
    EXPECT_EQ(file.Read(szBytes, 1), 0u);
    file.SeekToBegin();
    EXPECT_EQ(file.Read(szBytes, 7), 7u);
    EXPECT_STREQ(szBytes, "0123456");
    EXPECT_EQ(file.Read(szBytes, 7), 3u);
    EXPECT_STREQ(szBytes, "7893456");
    file.SetLength(2);
    file.Write("d", 1);
    file.SetLength(4);
    file.SeekToBegin();
    EXPECT_EQ(file.Read(szBytes, 7), 4u);
    EXPECT_EQ(std::string(szBytes, 4), std::string("01d\0", 4));
}

TEST(ArchiveTest, TextsAreStoredAsCountedUtf16AndComeBack) {
    EXPECT_EQ(StoredBytes(CString()), (Bytes{0xFF, 0xFE, 0xFF, 0}));
    EXPECT_EQ(StoredBytes(L"a\x4E2D"), (Bytes{0xFF, 0xFE, 0xFF, 2, 'a', 0, 0x2D, 0x4E}));
    EXPECT_EQ(StoredBytes(L"\U0001F600"), (Bytes{0xFF, 0xFE, 0xFF, 2, 0x3D, 0xD8, 0x00, 0xDE}));
    std::vector<CString> texts = {L"\U0001F600 \x540D", CString(L"a\0b", 3)};
    for (const int nLength : {0, 1, 254, 255, 256, 65533, 65534, 65535, 70000})
        texts.emplace_back(L'x', nLength);
    for (const CString& strText : texts) {
        CString strLoaded;
        EXPECT_EQ(Load(StoredBytes(strText), strLoaded), CArchiveException::none);
        EXPECT_EQ(strLoaded, strText);
        EXPECT_EQ(strLoaded.GetLength(), strText.GetLength());
    }
}

TEST(ArchiveTest, DamagedTextsAreReportedWithoutAllocatingWhatTheyClaim) {
    CString strText;
    for (Bytes bytes = StoredBytes(L"cut"); !bytes.empty();) {
        bytes.pop_back();
        EXPECT_EQ(Load(bytes, strText), CArchiveException::endOfFile) << bytes.size();
    }
    for (const Bytes& bytes : {Bytes{3, 'a', 'b', 'c'}, Bytes{0xFF, 5, 0, 'a', 'b'},
                               Bytes{0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}})
        EXPECT_EQ(Load(bytes, strText), CArchiveException::badClass);
    EXPECT_EQ(Load({0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 'x', 0}, strText),
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
