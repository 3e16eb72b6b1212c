#include <afx.h>

#include "wide_format.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <cwchar>
#include <cwctype>
#include <functional>
#include <utility>

namespace {

// The buffer of every empty string. It is never written and never freed.
struct {
    CStringData header;
    wchar_t chZero;
} g_emptyBuffer = {{0, 0, -1}, 0};

wchar_t* EmptyText() {
    static_assert(sizeof(CStringData) % alignof(wchar_t) == 0);
    return g_emptyBuffer.header.data();
}

int TextLength(const wchar_t* pszText) {
    if (pszText == nullptr)
        return 0;
    const std::size_t nLength = std::wcslen(pszText);
    if (nLength > INT_MAX)
        AfxThrowMemoryException();
    return static_cast<int>(nLength);
}

CStringData* AllocateBuffer(int nLength) {
    const std::size_t nBytes = sizeof(CStringData) + (static_cast<std::size_t>(nLength) + 1) * sizeof(wchar_t);
    CStringData* pData = static_cast<CStringData*>(std::malloc(nBytes));
    if (pData == nullptr)
        AfxThrowMemoryException();
    *pData = {0, nLength, 1};
    pData->data()[0] = 0;
    return pData;
}

void AddRef(CStringData* pData) noexcept {
    if (pData->nRefs >= 0)
        std::atomic_ref<long>(pData->nRefs).fetch_add(1, std::memory_order_relaxed);
}

void Release(CStringData* pData) noexcept {
    if (pData->nRefs >= 0 && std::atomic_ref<long>(pData->nRefs).fetch_sub(1, std::memory_order_acq_rel) == 1)
        std::free(pData);
}

bool IsShared(CStringData* pData) noexcept {
    return std::atomic_ref<long>(pData->nRefs).load(std::memory_order_acquire) != 1;
}

constexpr const wchar_t* g_pszWhiteSpace = L" \t\n\v\f\r\x85\xA0\x3000";

bool Contains(const wchar_t* pszCharacters, wchar_t ch) {
    return pszCharacters != nullptr && ch != 0 && std::wcschr(pszCharacters, ch) != nullptr;
}

} // namespace

// ---- Construction and assignment ------------------------------------------------------------------------------------

CString::CString() noexcept : m_pszData(EmptyText()) {}

CString::CString(const CString& strOther) noexcept : m_pszData(strOther.m_pszData) {
    AddRef(GetData());
}

CString::CString(CString&& strOther) noexcept : m_pszData(std::exchange(strOther.m_pszData, EmptyText())) {}

CString::CString(const wchar_t* pszText) : CString() {
    SetString(pszText);
}

CString::CString(const wchar_t* pchText, int nLength) : CString() {
    SetString(pchText, nLength);
}

CString::CString(wchar_t chRepeated, int nCount) : CString() {
    if (nCount <= 0)
        return;
    MakeWritable(nCount);
    std::fill_n(m_pszData, nCount, chRepeated);
    SetLength(nCount);
}

CString::~CString() {
    Release(GetData());
}

CString& CString::operator=(const CString& strOther) noexcept {
    CStringData* pOldData = GetData();
    AddRef(strOther.GetData());
    m_pszData = strOther.m_pszData;
    Release(pOldData);
    return *this;
}

CString& CString::operator=(CString&& strOther) noexcept {
    std::swap(m_pszData, strOther.m_pszData);
    return *this;
}

CString& CString::operator=(const wchar_t* pszText) {
    SetString(pszText);
    return *this;
}

CString& CString::operator=(wchar_t ch) {
    SetString(&ch, 1);
    return *this;
}

CString& CString::operator+=(const CString& strText) {
    Append(strText);
    return *this;
}

CString& CString::operator+=(const wchar_t* pszText) {
    Append(pszText);
    return *this;
}

CString& CString::operator+=(wchar_t ch) {
    AppendChar(ch);
    return *this;
}

void CString::Empty() noexcept {
    Release(GetData());
    m_pszData = EmptyText();
}

// ---- The buffer -----------------------------------------------------------------------------------------------------

// Makes the buffer this string's own, with room for nMinLength characters; contents and length stay (cut to the room).
void CString::MakeWritable(int nMinLength) {
    if (nMinLength < 0)
        AfxThrowInvalidArgException();
    CStringData* pOldData = GetData();
    const bool bShared = IsShared(pOldData);
    if (!bShared && pOldData->nAllocLength >= nMinLength)
        return;

    int nRoom = std::max(nMinLength, pOldData->nDataLength);
    if (!bShared && nRoom <= INT_MAX / 2) // a growing string grows again
        nRoom = std::max(nRoom, pOldData->nAllocLength + pOldData->nAllocLength / 2);
    CStringData* pNewData = AllocateBuffer(nRoom);
    std::wmemcpy(pNewData->data(), m_pszData, static_cast<std::size_t>(pOldData->nDataLength) + 1);
    pNewData->nDataLength = pOldData->nDataLength;
    m_pszData = pNewData->data();
    Release(pOldData);
}

void CString::SetLength(int nLength) noexcept {
    GetData()->nDataLength = nLength;
    m_pszData[nLength] = 0;
}

bool CString::PointsInside(const wchar_t* pchText) const noexcept {
    const std::less<const wchar_t*> isBefore;
    return !isBefore(pchText, m_pszData) && !isBefore(m_pszData + GetData()->nAllocLength, pchText);
}

// Every change of the text's length comes here. The range must lie inside the string.
void CString::ReplaceRange(int nFirst, int nRemoved, const wchar_t* pchInserted, int nInserted) {
    const int nOldLength = GetLength();
    if (nInserted > INT_MAX - (nOldLength - nRemoved))
        AfxThrowMemoryException();
    const int nNewLength = nOldLength - nRemoved + nInserted;
    if (nNewLength == 0) {
        Empty();
        return;
    }
    std::wstring strKept; // the inserted characters may be this string's own
    if (nInserted > 0 && PointsInside(pchInserted)) {
        strKept.assign(pchInserted, static_cast<std::size_t>(nInserted));
        pchInserted = strKept.data();
    }
    MakeWritable(std::max(nNewLength, nOldLength));
    std::wmemmove(m_pszData + nFirst + nInserted, m_pszData + nFirst + nRemoved,
                  static_cast<std::size_t>(nOldLength - nFirst - nRemoved));
    if (nInserted > 0)
        std::wmemcpy(m_pszData + nFirst, pchInserted, static_cast<std::size_t>(nInserted));
    SetLength(nNewLength);
}

wchar_t* CString::GetBuffer() {
    MakeWritable(GetLength());
    return m_pszData;
}

wchar_t* CString::GetBuffer(int nMinLength) {
    MakeWritable(std::max(nMinLength, GetLength()));
    return m_pszData;
}

wchar_t* CString::GetBufferSetLength(int nLength) {
    MakeWritable(nLength);
    SetLength(nLength);
    return m_pszData;
}

void CString::ReleaseBuffer(int nNewLength) {
    const int nRoom = GetData()->nAllocLength;
    if (nNewLength == -1)
        nNewLength = static_cast<int>(std::find(m_pszData, m_pszData + nRoom, L'\0') - m_pszData);
    ENSURE(nNewLength >= 0 && nNewLength <= nRoom);
    if (m_pszData != EmptyText())
        SetLength(nNewLength);
}

void CString::Preallocate(int nLength) {
    MakeWritable(std::max(nLength, GetLength()));
}

void CString::FreeExtra() {
    CStringData* pOldData = GetData();
    if (pOldData->nAllocLength == pOldData->nDataLength)
        return;
    CString strExact;
    if (!IsEmpty()) {
        CStringData* pNewData = AllocateBuffer(pOldData->nDataLength);
        std::wmemcpy(pNewData->data(), m_pszData, static_cast<std::size_t>(pOldData->nDataLength) + 1);
        pNewData->nDataLength = pOldData->nDataLength;
        strExact.m_pszData = pNewData->data();
    }
    *this = std::move(strExact);
}

// ---- Characters and parts -------------------------------------------------------------------------------------------

wchar_t CString::GetAt(int nIndex) const {
    ENSURE(nIndex >= 0 && nIndex <= GetLength());
    return m_pszData[nIndex];
}

void CString::SetAt(int nIndex, wchar_t ch) {
    ENSURE(nIndex >= 0 && nIndex < GetLength());
    MakeWritable(GetLength());
    m_pszData[nIndex] = ch;
}

void CString::SetString(const wchar_t* pszText) {
    SetString(pszText, TextLength(pszText));
}

void CString::SetString(const wchar_t* pchText, int nLength) {
    ENSURE(nLength >= 0 && (pchText != nullptr || nLength == 0));
    ReplaceRange(0, GetLength(), pchText, nLength);
}

void CString::Append(const CString& strText) {
    if (IsEmpty())
        *this = strText;
    else
        ReplaceRange(GetLength(), 0, strText.m_pszData, strText.GetLength());
}

void CString::Append(const wchar_t* pszText) {
    Append(pszText, TextLength(pszText));
}

void CString::Append(const wchar_t* pchText, int nLength) {
    ENSURE(nLength >= 0 && (pchText != nullptr || nLength == 0));
    ReplaceRange(GetLength(), 0, pchText, nLength);
}

void CString::AppendChar(wchar_t ch) {
    Append(&ch, 1);
}

CString CString::Left(int nCount) const {
    return Mid(0, nCount);
}

CString CString::Right(int nCount) const {
    nCount = std::clamp(nCount, 0, GetLength());
    return Mid(GetLength() - nCount, nCount);
}

CString CString::Mid(int nFirst) const {
    return Mid(nFirst, GetLength());
}

CString CString::Mid(int nFirst, int nCount) const {
    nFirst = std::clamp(nFirst, 0, GetLength());
    nCount = std::clamp(nCount, 0, GetLength() - nFirst);
    return nCount == GetLength() ? *this : CString(m_pszData + nFirst, nCount);
}

// ---- Search and comparison ------------------------------------------------------------------------------------------

int CString::Find(wchar_t ch, int nStart) const noexcept {
    if (nStart < 0 || nStart >= GetLength())
        return -1;
    const wchar_t* pchEnd = m_pszData + GetLength();
    const wchar_t* pchFound = std::find(m_pszData + nStart, const_cast<wchar_t*>(pchEnd), ch);
    return pchFound == pchEnd ? -1 : static_cast<int>(pchFound - m_pszData);
}

int CString::Find(const wchar_t* pszText, int nStart) const noexcept {
    if (pszText == nullptr || nStart < 0 || nStart > GetLength())
        return -1;
    const wchar_t* pszFound = std::wcsstr(m_pszData + nStart, pszText);
    return pszFound == nullptr ? -1 : static_cast<int>(pszFound - m_pszData);
}

int CString::FindOneOf(const wchar_t* pszCharacters) const noexcept {
    if (pszCharacters == nullptr)
        return -1;
    const wchar_t* pchFound = std::wcspbrk(m_pszData, pszCharacters);
    return pchFound == nullptr ? -1 : static_cast<int>(pchFound - m_pszData);
}

int CString::ReverseFind(wchar_t ch) const noexcept {
    for (int nIndex = GetLength() - 1; nIndex >= 0; nIndex--) {
        if (m_pszData[nIndex] == ch)
            return nIndex;
    }
    return -1;
}

int CString::Compare(const wchar_t* pszText) const noexcept {
    return std::wcscmp(m_pszData, pszText == nullptr ? L"" : pszText);
}

int CString::CompareNoCase(const wchar_t* pszText) const noexcept {
    return _wcsicmp(m_pszData, pszText == nullptr ? L"" : pszText);
}

// ---- Changes --------------------------------------------------------------------------------------------------------

CString& CString::MakeUpper() {
    if (!IsEmpty()) {
        MakeWritable(GetLength());
        std::transform(m_pszData, m_pszData + GetLength(), m_pszData,
                       [](wchar_t ch) { return static_cast<wchar_t>(std::towupper(static_cast<std::wint_t>(ch))); });
    }
    return *this;
}

CString& CString::MakeLower() {
    if (!IsEmpty()) {
        MakeWritable(GetLength());
        std::transform(m_pszData, m_pszData + GetLength(), m_pszData,
                       [](wchar_t ch) { return static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(ch))); });
    }
    return *this;
}

CString& CString::MakeReverse() {
    if (!IsEmpty()) {
        MakeWritable(GetLength());
        std::reverse(m_pszData, m_pszData + GetLength());
    }
    return *this;
}

int CString::Replace(wchar_t chOld, wchar_t chNew) {
    const int nFound = static_cast<int>(std::count(m_pszData, m_pszData + GetLength(), chOld));
    if (nFound == 0 || chOld == chNew)
        return 0;
    MakeWritable(GetLength());
    std::replace(m_pszData, m_pszData + GetLength(), chOld, chNew);
    return nFound;
}

int CString::Replace(const wchar_t* pszOld, const wchar_t* pszNew) {
    const int nOldLength = TextLength(pszOld);
    if (nOldLength == 0)
        return 0;
    CString strResult;
    int nReplaced = 0;
    int nDone = 0;
    for (int nFound = Find(pszOld, 0); nFound != -1; nFound = Find(pszOld, nDone)) {
        strResult.Append(m_pszData + nDone, nFound - nDone);
        strResult.Append(pszNew);
        nDone = nFound + nOldLength;
        nReplaced++;
    }
    if (nReplaced > 0) {
        strResult.Append(m_pszData + nDone, GetLength() - nDone);
        *this = std::move(strResult);
    }
    return nReplaced;
}

int CString::Remove(wchar_t ch) {
    const int nOldLength = GetLength();
    if (Find(ch) == -1)
        return 0;
    MakeWritable(nOldLength);
    const int nNewLength = static_cast<int>(std::remove(m_pszData, m_pszData + nOldLength, ch) - m_pszData);
    SetLength(nNewLength);
    return nOldLength - nNewLength;
}

int CString::Insert(int nIndex, wchar_t ch) {
    ReplaceRange(std::clamp(nIndex, 0, GetLength()), 0, &ch, 1);
    return GetLength();
}

int CString::Insert(int nIndex, const wchar_t* pszText) {
    if (const int nLength = TextLength(pszText); nLength > 0)
        ReplaceRange(std::clamp(nIndex, 0, GetLength()), 0, pszText, nLength);
    return GetLength();
}

int CString::Delete(int nIndex, int nCount) {
    nIndex = std::max(nIndex, 0);
    if (nCount > 0 && nIndex < GetLength())
        ReplaceRange(nIndex, std::min(nCount, GetLength() - nIndex), nullptr, 0);
    return GetLength();
}

CString& CString::Trim() {
    return TrimRight().TrimLeft();
}

CString& CString::Trim(wchar_t ch) {
    return TrimRight(ch).TrimLeft(ch);
}

CString& CString::Trim(const wchar_t* pszCharacters) {
    return TrimRight(pszCharacters).TrimLeft(pszCharacters);
}

CString& CString::TrimLeft() {
    return TrimLeft(g_pszWhiteSpace);
}

CString& CString::TrimLeft(wchar_t ch) {
    const wchar_t szCharacters[] = {ch, 0};
    return TrimLeft(szCharacters);
}

CString& CString::TrimLeft(const wchar_t* pszCharacters) {
    int nCount = 0;
    while (nCount < GetLength() && Contains(pszCharacters, m_pszData[nCount]))
        nCount++;
    Delete(0, nCount);
    return *this;
}

CString& CString::TrimRight() {
    return TrimRight(g_pszWhiteSpace);
}

CString& CString::TrimRight(wchar_t ch) {
    const wchar_t szCharacters[] = {ch, 0};
    return TrimRight(szCharacters);
}

CString& CString::TrimRight(const wchar_t* pszCharacters) {
    int nLength = GetLength();
    while (nLength > 0 && Contains(pszCharacters, m_pszData[nLength - 1]))
        nLength--;
    Delete(nLength, GetLength() - nLength);
    return *this;
}

CString CString::Tokenize(const wchar_t* pszSeparators, int& nStart) const {
    ENSURE(nStart >= 0);
    int nFirst = nStart;
    while (nFirst < GetLength() && Contains(pszSeparators, m_pszData[nFirst]))
        nFirst++;
    if (nFirst >= GetLength()) {
        nStart = -1;
        return CString();
    }
    int nEnd = nFirst;
    while (nEnd < GetLength() && !Contains(pszSeparators, m_pszData[nEnd]))
        nEnd++;
    nStart = nEnd + 1;
    return Mid(nFirst, nEnd - nFirst);
}

// ---- Formatting -----------------------------------------------------------------------------------------------------

void CString::Format(const wchar_t* pszFormat, ...) {
    va_list args;
    va_start(args, pszFormat);
    FormatV(pszFormat, args);
    va_end(args);
}

void CString::FormatV(const wchar_t* pszFormat, va_list args) {
    ENSURE(pszFormat != nullptr);
    const std::wstring strText = FormatWide(pszFormat, args);
    SetString(strText.data(), static_cast<int>(strText.size()));
}

void CString::AppendFormat(const wchar_t* pszFormat, ...) {
    va_list args;
    va_start(args, pszFormat);
    AppendFormatV(pszFormat, args);
    va_end(args);
}

void CString::AppendFormatV(const wchar_t* pszFormat, va_list args) {
    ENSURE(pszFormat != nullptr);
    const std::wstring strText = FormatWide(pszFormat, args);
    Append(strText.data(), static_cast<int>(strText.size()));
}

// ---- Concatenation --------------------------------------------------------------------------------------------------

CString operator+(const CString& strLeft, const CString& strRight) {
    CString strResult(strLeft);
    strResult.Append(strRight);
    return strResult;
}

CString operator+(const CString& strLeft, const wchar_t* pszRight) {
    CString strResult(strLeft);
    strResult.Append(pszRight);
    return strResult;
}

CString operator+(const wchar_t* pszLeft, const CString& strRight) {
    CString strResult(pszLeft);
    strResult.Append(strRight);
    return strResult;
}

CString operator+(const CString& strLeft, wchar_t chRight) {
    CString strResult(strLeft);
    strResult.AppendChar(chRight);
    return strResult;
}

CString operator+(wchar_t chLeft, const CString& strRight) {
    CString strResult(chLeft);
    strResult.Append(strRight);
    return strResult;
}
