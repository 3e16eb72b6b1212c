#include <afx.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <string>

static_assert(std::endian::native == std::endian::little, "archives hold little-endian values");

// ---- CMemFile -------------------------------------------------------------------------------------------------------

IMPLEMENT_DYNAMIC(CFile, CObject)
CFile::~CFile() = default;

IMPLEMENT_DYNAMIC(CMemFile, CFile)

CMemFile::CMemFile(UINT nGrowBytes) : m_nGrowBytes(nGrowBytes) {}

CMemFile::CMemFile(BYTE* pBuffer, UINT nBufferSize, UINT nGrowBytes) {
    Attach(pBuffer, nBufferSize, nGrowBytes);
}

CMemFile::~CMemFile() {
    Close();
}

void CMemFile::Attach(BYTE* pBuffer, UINT nBufferSize, UINT nGrowBytes) {
    Close();
    m_pBuffer = pBuffer;
    m_nBufferSize = nBufferSize;
    m_nFileSize = nGrowBytes == 0 ? nBufferSize : 0;
    m_nGrowBytes = nGrowBytes;
    m_bOwnsBuffer = nGrowBytes != 0;
}

BYTE* CMemFile::Detach() {
    BYTE* pBuffer = m_pBuffer;
    m_pBuffer = nullptr;
    m_nBufferSize = m_nFileSize = m_nPosition = 0;
    m_bOwnsBuffer = true;
    return pBuffer;
}

ULONGLONG CMemFile::GetPosition() const {
    return m_nPosition;
}

ULONGLONG CMemFile::Seek(LONGLONG nOffset, UINT nFrom) {
    ENSURE(nFrom <= end);
    const LONGLONG nBase = static_cast<LONGLONG>(nFrom == begin ? 0 : nFrom == current ? m_nPosition : m_nFileSize);
    ENSURE(nOffset <= std::numeric_limits<LONGLONG>::max() - nBase && nBase + nOffset >= 0);
    m_nPosition = static_cast<std::size_t>(nBase + nOffset);
    return m_nPosition;
}

void CMemFile::SetLength(ULONGLONG nNewLength) {
    if (nNewLength > m_nBufferSize)
        Grow(static_cast<std::size_t>(nNewLength));
    if (nNewLength > m_nFileSize)
        std::memset(m_pBuffer + m_nFileSize, 0, static_cast<std::size_t>(nNewLength) - m_nFileSize);
    m_nFileSize = static_cast<std::size_t>(nNewLength);
    m_nPosition = std::min(m_nPosition, m_nFileSize);
}

ULONGLONG CMemFile::GetLength() const {
    return m_nFileSize;
}

UINT CMemFile::Read(void* pBuffer, UINT nCount) {
    if (nCount == 0 || m_nPosition >= m_nFileSize)
        return 0;
    const std::size_t nRead = std::min<std::size_t>(nCount, m_nFileSize - m_nPosition);
    std::memcpy(pBuffer, m_pBuffer + m_nPosition, nRead);
    m_nPosition += nRead;
    return static_cast<UINT>(nRead);
}

void CMemFile::Write(const void* pBuffer, UINT nCount) {
    if (nCount == 0)
        return;
    if (nCount > std::numeric_limits<std::size_t>::max() - m_nPosition)
        AfxThrowMemoryException();
    const std::size_t nPosition = m_nPosition;
    if (nPosition + nCount > m_nFileSize)
        SetLength(nPosition + nCount);
    std::memcpy(m_pBuffer + nPosition, pBuffer, nCount);
    m_nPosition = nPosition + nCount;
}

void CMemFile::Flush() {} // the bytes are where they belong

void CMemFile::Close() {
    BYTE* pBuffer = m_bOwnsBuffer ? m_pBuffer : nullptr;
    Detach();
    std::free(pBuffer);
}

void CMemFile::Grow(std::size_t nNewSize) {
    if (m_nGrowBytes == 0 || nNewSize > std::numeric_limits<std::size_t>::max() - m_nGrowBytes)
        AfxThrowMemoryException();
    nNewSize = (nNewSize + m_nGrowBytes - 1) / m_nGrowBytes * m_nGrowBytes;
    BYTE* pBuffer = static_cast<BYTE*>(std::realloc(m_pBuffer, nNewSize));
    if (pBuffer == nullptr)
        AfxThrowMemoryException();
    m_pBuffer = pBuffer;
    m_nBufferSize = nNewSize;
}

// ---- CArchive -------------------------------------------------------------------------------------------------------

CArchive::CArchive(CFile* pFile, UINT nMode, int, void*) : m_pFile(pFile), m_bLoading((nMode & load) != 0) {
    ENSURE(pFile != nullptr);
}

CArchive::~CArchive() = default;

UINT CArchive::Read(void* pBuffer, UINT nMax) {
    ENSURE(m_pFile != nullptr);
    if (!m_bLoading)
        AfxThrowArchiveException(CArchiveException::writeOnly);
    return m_pFile->Read(pBuffer, nMax);
}

void CArchive::Write(const void* pBuffer, UINT nMax) {
    ENSURE(m_pFile != nullptr);
    if (m_bLoading)
        AfxThrowArchiveException(CArchiveException::readOnly);
    m_pFile->Write(pBuffer, nMax);
}

void CArchive::Flush() {
    ENSURE(m_pFile != nullptr);
    m_pFile->Flush();
}

void CArchive::Close() {
    Flush();
    m_pFile = nullptr;
}

void CArchive::Abort() {
    m_pFile = nullptr;
}

template <class TYPE>
void CArchive::StoreValue(TYPE value) {
    Write(&value, sizeof(value));
}

template <class TYPE>
void CArchive::LoadValue(TYPE& value) {
    TYPE loaded;
    if (Read(&loaded, sizeof(loaded)) != sizeof(loaded))
        AfxThrowArchiveException(CArchiveException::endOfFile);
    value = loaded;
}

// clang-format off
CArchive& CArchive::operator<<(BYTE nValue) { StoreValue(nValue); return *this; }
CArchive& CArchive::operator<<(char nValue) { StoreValue(nValue); return *this; }
CArchive& CArchive::operator<<(short nValue) { StoreValue(nValue); return *this; }
CArchive& CArchive::operator<<(WORD nValue) { StoreValue(nValue); return *this; }
CArchive& CArchive::operator<<(int nValue) { StoreValue(nValue); return *this; }
CArchive& CArchive::operator<<(unsigned nValue) { StoreValue(nValue); return *this; }
CArchive& CArchive::operator<<(long nValue) { StoreValue(nValue); return *this; }
CArchive& CArchive::operator<<(unsigned long nValue) { StoreValue(nValue); return *this; }
CArchive& CArchive::operator<<(LONGLONG nValue) { StoreValue(nValue); return *this; }
CArchive& CArchive::operator<<(ULONGLONG nValue) { StoreValue(nValue); return *this; }
CArchive& CArchive::operator<<(float fValue) { StoreValue(fValue); return *this; }
CArchive& CArchive::operator<<(double fValue) { StoreValue(fValue); return *this; }
CArchive& CArchive::operator<<(bool bValue) { StoreValue<BYTE>(bValue ? 1 : 0); return *this; }

CArchive& CArchive::operator>>(BYTE& nValue) { LoadValue(nValue); return *this; }
CArchive& CArchive::operator>>(char& nValue) { LoadValue(nValue); return *this; }
CArchive& CArchive::operator>>(short& nValue) { LoadValue(nValue); return *this; }
CArchive& CArchive::operator>>(WORD& nValue) { LoadValue(nValue); return *this; }
CArchive& CArchive::operator>>(int& nValue) { LoadValue(nValue); return *this; }
CArchive& CArchive::operator>>(unsigned& nValue) { LoadValue(nValue); return *this; }
CArchive& CArchive::operator>>(long& nValue) { LoadValue(nValue); return *this; }
CArchive& CArchive::operator>>(unsigned long& nValue) { LoadValue(nValue); return *this; }
CArchive& CArchive::operator>>(LONGLONG& nValue) { LoadValue(nValue); return *this; }
CArchive& CArchive::operator>>(ULONGLONG& nValue) { LoadValue(nValue); return *this; }
CArchive& CArchive::operator>>(float& fValue) { LoadValue(fValue); return *this; }
CArchive& CArchive::operator>>(double& fValue) { LoadValue(fValue); return *this; }
// clang-format on

CArchive& CArchive::operator>>(bool& bValue) {
    BYTE nValue;
    LoadValue(nValue);
    bValue = nValue != 0;
    return *this;
}

// ---- Texts ----------------------------------------------------------------------------------------------------------
// Stored form: the mark 0xFF 0xFE 0xFF for UTF-16, the number of units (one byte; 0xFF and two bytes; 0xFF 0xFFFF and
// four bytes), the units. Without the mark: bytes of the ANSI code page.

namespace {

constexpr WORD g_nUnicodeMark = 0xFFFE;
constexpr WORD g_nLongLengthMark = 0xFFFF;

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

CString FromAnsi(const std::string& strBytes) {
    if (strBytes.empty())
        return CString();
    const int nBytes = static_cast<int>(strBytes.size());
    const int nLength = MultiByteToWideChar(CP_ACP, 0, strBytes.data(), nBytes, nullptr, 0);
    CString strText;
    MultiByteToWideChar(CP_ACP, 0, strBytes.data(), nBytes, strText.GetBufferSetLength(nLength), nLength);
    return strText;
}

// Reads in pieces: a length in the data that is larger than the data must not be allocated first.
template <class STRING>
STRING ReadUnits(CArchive& ar, DWORD nLength) {
    constexpr DWORD nPiece = 4096;
    if (nLength > static_cast<DWORD>(std::numeric_limits<int>::max()))
        AfxThrowArchiveException(CArchiveException::badIndex);
    STRING strUnits;
    while (strUnits.size() < nLength) {
        const std::size_t nDone = strUnits.size();
        const std::size_t nNow = std::min<std::size_t>(nPiece, nLength - nDone);
        const UINT nBytes = static_cast<UINT>(nNow * sizeof(typename STRING::value_type));
        strUnits.resize(nDone + nNow);
        if (ar.Read(strUnits.data() + nDone, nBytes) != nBytes)
            AfxThrowArchiveException(CArchiveException::endOfFile);
    }
    return strUnits;
}

} // namespace

CArchive& CArchive::operator<<(const CString& strValue) {
    const std::u16string strUnits = ToUtf16(strValue);
    *this << static_cast<BYTE>(0xFF) << g_nUnicodeMark;
    if (strUnits.size() < 0xFF)
        *this << static_cast<BYTE>(strUnits.size());
    else if (strUnits.size() < g_nUnicodeMark)
        *this << static_cast<BYTE>(0xFF) << static_cast<WORD>(strUnits.size());
    else
        *this << static_cast<BYTE>(0xFF) << g_nLongLengthMark << static_cast<unsigned>(strUnits.size());
    Write(strUnits.data(), static_cast<UINT>(strUnits.size() * sizeof(char16_t)));
    return *this;
}

CArchive& CArchive::operator>>(CString& strValue) {
    bool bUnicode = false;
    BYTE nByteLength;
    *this >> nByteLength;
    WORD nWordLength = 0;
    if (nByteLength == 0xFF) {
        *this >> nWordLength;
        if (nWordLength == g_nUnicodeMark) {
            bUnicode = true;
            *this >> nByteLength;
            if (nByteLength == 0xFF)
                *this >> nWordLength;
        }
    }
    unsigned nLength = nByteLength == 0xFF ? nWordLength : nByteLength;
    if (nByteLength == 0xFF && nWordLength == g_nLongLengthMark)
        *this >> nLength;

    strValue = bUnicode ? FromUtf16(ReadUnits<std::u16string>(*this, nLength))
                        : FromAnsi(ReadUnits<std::string>(*this, nLength));
    return *this;
}

void CArchive::WriteString(LPCTSTR pszText) {
    const std::u16string strUnits = ToUtf16(CString(pszText));
    Write(strUnits.data(), static_cast<UINT>(strUnits.size() * sizeof(char16_t)));
}
