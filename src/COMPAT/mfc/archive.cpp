#include <afx.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <string>

static_assert(std::endian::native == std::endian::little, "archives hold little-endian values");

// ---- CMemFile -------------------------------------------------------------------------------------------------------

CFile::~CFile() = default;

void CMemFile::SetLength(ULONGLONG nNewLength) {
    m_bytes.resize(static_cast<std::size_t>(nNewLength));
    m_nPosition = std::min(m_nPosition, m_bytes.size());
}

void CMemFile::SeekToBegin() {
    m_nPosition = 0;
}

UINT CMemFile::Read(void* pBuffer, UINT nCount) {
    const std::size_t nRead = std::min<std::size_t>(nCount, m_bytes.size() - m_nPosition);
    std::copy_n(m_bytes.data() + m_nPosition, nRead, static_cast<BYTE*>(pBuffer));
    m_nPosition += nRead;
    return static_cast<UINT>(nRead);
}

void CMemFile::Write(const void* pBuffer, UINT nCount) {
    m_bytes.resize(std::max(m_bytes.size(), m_nPosition + nCount));
    std::copy_n(static_cast<const BYTE*>(pBuffer), nCount, m_bytes.data() + m_nPosition);
    m_nPosition += nCount;
}

// ---- CArchive -------------------------------------------------------------------------------------------------------
// A stored text: the mark 0xFF 0xFE 0xFF for UTF-16, the number of units (one byte; 0xFF and two bytes; 0xFF 0xFFFF and
// four bytes), the units.

namespace {

constexpr BYTE g_nLongByte = 0xFF;
constexpr WORD g_nUnicodeMark = 0xFFFE;
constexpr WORD g_nLongWord = 0xFFFF;

std::u16string ToUtf16(const CString& strText) {
    std::u16string strUnits;
    strUnits.reserve(static_cast<std::size_t>(strText.GetLength()));
    for (int nIndex = 0; nIndex < strText.GetLength(); nIndex++) {
        const std::uint32_t nCharacter = static_cast<std::uint32_t>(strText[nIndex]);
        if (nCharacter <= 0xFFFF)
            strUnits += static_cast<char16_t>(nCharacter);
        else if (nCharacter <= 0x10FFFF) {
            strUnits += static_cast<char16_t>(0xD800 + ((nCharacter - 0x10000) >> 10));
            strUnits += static_cast<char16_t>(0xDC00 + ((nCharacter - 0x10000) & 0x3FF));
        } else
            strUnits += u'\xFFFD';
    }
    return strUnits;
}

CString FromUtf16(const std::u16string& strUnits) {
    std::wstring strText;
    strText.reserve(strUnits.size());
    for (std::size_t nIndex = 0; nIndex < strUnits.size(); nIndex++) {
        const std::uint32_t nUnit = strUnits[nIndex];
        const bool bPair = sizeof(wchar_t) > 2 && (nUnit & 0xFC00) == 0xD800 && nIndex + 1 < strUnits.size() &&
                           (strUnits[nIndex + 1] & 0xFC00) == 0xDC00;
        if (bPair)
            strText += static_cast<wchar_t>(0x10000 + ((nUnit & 0x3FF) << 10) + (strUnits[++nIndex] & 0x3FF));
        else
            strText += static_cast<wchar_t>(nUnit);
    }
    return CString(strText.data(), static_cast<int>(strText.size()));
}

} // namespace

CArchive::CArchive(CFile* pFile, UINT nMode) : m_pFile(pFile), m_bLoading((nMode & load) != 0) {
    ENSURE(pFile != nullptr);
}

void CArchive::Close() {
    m_pFile = nullptr;
}

void CArchive::StoreBytes(const void* pBytes, std::size_t nBytes) {
    ENSURE(m_pFile != nullptr);
    if (m_bLoading)
        AfxThrowArchiveException(CArchiveException::readOnly);
    m_pFile->Write(pBytes, static_cast<UINT>(nBytes));
}

void CArchive::LoadBytes(void* pBytes, std::size_t nBytes) {
    ENSURE(m_pFile != nullptr);
    if (!m_bLoading)
        AfxThrowArchiveException(CArchiveException::writeOnly);
    if (m_pFile->Read(pBytes, static_cast<UINT>(nBytes)) != nBytes)
        AfxThrowArchiveException(CArchiveException::endOfFile);
}

template <class TYPE>
void CArchive::StoreNumber(std::size_t nValue) {
    const TYPE nStored = static_cast<TYPE>(nValue);
    StoreBytes(&nStored, sizeof(nStored));
}

template <class TYPE>
TYPE CArchive::LoadNumber() {
    TYPE nLoaded;
    LoadBytes(&nLoaded, sizeof(nLoaded));
    return nLoaded;
}

CArchive& CArchive::operator<<(const CString& strValue) {
    const std::u16string strUnits = ToUtf16(strValue);
    StoreNumber<BYTE>(g_nLongByte);
    StoreNumber<WORD>(g_nUnicodeMark);
    if (strUnits.size() < g_nLongByte)
        StoreNumber<BYTE>(strUnits.size());
    else {
        StoreNumber<BYTE>(g_nLongByte);
        if (strUnits.size() < g_nUnicodeMark)
            StoreNumber<WORD>(strUnits.size());
        else {
            StoreNumber<WORD>(g_nLongWord);
            StoreNumber<DWORD>(strUnits.size());
        }
    }
    StoreBytes(strUnits.data(), strUnits.size() * sizeof(char16_t));
    return *this;
}

CArchive& CArchive::operator>>(CString& strValue) {
    if (LoadNumber<BYTE>() != g_nLongByte || LoadNumber<WORD>() != g_nUnicodeMark)
        AfxThrowArchiveException(CArchiveException::badClass);
    std::size_t nLength = LoadNumber<BYTE>();
    if (nLength == g_nLongByte)
        nLength = LoadNumber<WORD>();
    if (nLength == g_nLongWord)
        nLength = LoadNumber<DWORD>();
    if (nLength > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        AfxThrowArchiveException(CArchiveException::badClass);

    // In pieces: a length in the data that is larger than the data must not be allocated first.
    constexpr std::size_t nPiece = 4096;
    std::u16string strUnits;
    while (strUnits.size() < nLength) {
        const std::size_t nDone = strUnits.size();
        strUnits.resize(std::min(nLength, nDone + nPiece));
        LoadBytes(strUnits.data() + nDone, (strUnits.size() - nDone) * sizeof(char16_t));
    }
    strValue = FromUtf16(strUnits);
    return *this;
}
