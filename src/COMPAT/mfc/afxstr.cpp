#include <afx.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cwchar>
#include <functional>
#include <string>
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
    // Comparing addresses, not counts, lets the compiler see that the empty text's buffer is never freed.
    if (pData != &g_emptyBuffer.header &&
        std::atomic_ref<long>(pData->nRefs).fetch_sub(1, std::memory_order_acq_rel) == 1)
        std::free(pData);
}

bool IsShared(CStringData* pData) noexcept {
    return std::atomic_ref<long>(pData->nRefs).load(std::memory_order_acquire) != 1;
}

// Text that is gathered by single characters, in a place on the stack that most texts fit into.
class CGatheredText {
public:
    void Add(wchar_t ch) {
        if (m_nCount == ROOM)
            Flush();
        m_szGathered[m_nCount++] = ch;
    }
    void Add(const wchar_t* pszText) {
        while (*pszText != 0)
            Add(*pszText++);
    }
    CString Take() {
        Flush();
        return std::move(m_strText);
    }

private:
    static constexpr int ROOM = 256;

    void Flush() {
        m_strText.Append(m_szGathered, m_nCount);
        m_nCount = 0;
    }

    wchar_t m_szGathered[ROOM];
    int m_nCount = 0;
    CString m_strText;
};

CString FormatText(const wchar_t* pszFormat, va_list args) {
    ENSURE(pszFormat != nullptr);
    CGatheredText result;
    for (; *pszFormat != 0; ++pszFormat) {
        if (*pszFormat != L'%') {
            result.Add(*pszFormat);
            continue;
        }
        switch (*++pszFormat) {
        case L's': {
            const wchar_t* pszText = va_arg(args, const wchar_t*);
            result.Add(pszText != nullptr ? pszText : L"(null)");
            break;
        }
        case L'd':
            result.Add(std::to_wstring(va_arg(args, int)).c_str());
            break;
        case L'%':
            result.Add(L'%');
            break;
        default: // what it would take from the arguments is unknown
            AfxThrowInvalidArgException();
        }
    }
    return result.Take();
}

} // namespace

// ---- Construction and assignment ------------------------------------------------------------------------------------

CString::CString() noexcept : m_pszData(EmptyText()) {}

CString::CString(const CString& strOther) noexcept : m_pszData(strOther.m_pszData) {
    AddRef(GetData());
}

CString::CString(CString&& strOther) noexcept : m_pszData(std::exchange(strOther.m_pszData, EmptyText())) {}

CString::CString(const wchar_t* pszText) : CString(pszText, TextLength(pszText)) {}

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
    SetString(pszText, TextLength(pszText));
    return *this;
}

CString& CString::operator+=(const CString& strText) {
    if (IsEmpty())
        *this = strText;
    else
        Append(strText.m_pszData, strText.GetLength());
    return *this;
}

CString& CString::operator+=(const wchar_t* pszText) {
    Append(pszText);
    return *this;
}

CString& CString::operator+=(wchar_t ch) {
    Append(&ch, 1);
    return *this;
}

void CString::Empty() noexcept {
    Release(GetData());
    m_pszData = EmptyText();
}

// ---- The buffer -----------------------------------------------------------------------------------------------------

// Makes the buffer this string's own, with room for nMinLength characters; contents and length stay.
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

wchar_t* CString::GetBufferSetLength(int nLength) {
    MakeWritable(nLength);
    SetLength(nLength);
    return m_pszData;
}

void CString::ReleaseBuffer(int nNewLength) {
    ENSURE(nNewLength >= 0 && nNewLength <= GetLength());
    if (nNewLength == 0)
        Empty();
    else
        SetLength(nNewLength);
}

void CString::Preallocate(int nLength) {
    MakeWritable(std::max(nLength, GetLength()));
}

// ---- Characters and parts -------------------------------------------------------------------------------------------

wchar_t CString::GetAt(int nIndex) const {
    ENSURE(nIndex >= 0 && nIndex <= GetLength());
    return m_pszData[nIndex];
}

void CString::SetString(const wchar_t* pchText, int nLength) {
    ENSURE(nLength >= 0 && (pchText != nullptr || nLength == 0));
    ReplaceRange(0, GetLength(), pchText, nLength);
}

void CString::Append(const wchar_t* pszText) {
    Append(pszText, TextLength(pszText));
}

void CString::Append(const wchar_t* pchText, int nLength) {
    ENSURE(nLength >= 0 && (pchText != nullptr || nLength == 0));
    if (nLength == 0)
        return;
    const int nOldLength = GetLength();
    if (nLength <= GetData()->nAllocLength - nOldLength && !IsShared(GetData())) {
        std::wmemmove(m_pszData + nOldLength, pchText, static_cast<std::size_t>(nLength)); // most texts grow like this
        SetLength(nOldLength + nLength);
        return;
    }
    ReplaceRange(nOldLength, 0, pchText, nLength);
}

CString CString::Left(int nCount) const {
    return Mid(0, nCount);
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

int CString::Compare(const wchar_t* pszText) const noexcept {
    return std::wcscmp(m_pszData, pszText == nullptr ? L"" : pszText);
}

// ---- Changes --------------------------------------------------------------------------------------------------------

int CString::Delete(int nIndex, int nCount) {
    nIndex = std::max(nIndex, 0);
    if (nCount > 0 && nIndex < GetLength())
        ReplaceRange(nIndex, std::min(nCount, GetLength() - nIndex), nullptr, 0);
    return GetLength();
}

// ---- Formatting -----------------------------------------------------------------------------------------------------

void CString::Format(const wchar_t* pszFormat, ...) {
    va_list args;
    va_start(args, pszFormat);
    FormatV(pszFormat, args);
    va_end(args);
}

void CString::FormatV(const wchar_t* pszFormat, va_list args) {
    *this = FormatText(pszFormat, args);
}

void CString::AppendFormat(const wchar_t* pszFormat, ...) {
    va_list args;
    va_start(args, pszFormat);
    const CString strText = FormatText(pszFormat, args);
    va_end(args);
    *this += strText;
}

// ---- Concatenation --------------------------------------------------------------------------------------------------

CString operator+(const CString& strLeft, const CString& strRight) {
    CString strResult(strLeft);
    strResult += strRight;
    return strResult;
}

CString operator+(const CString& strLeft, const wchar_t* pszRight) {
    CString strResult(strLeft);
    strResult.Append(pszRight);
    return strResult;
}

CString operator+(const wchar_t* pszLeft, const CString& strRight) {
    CString strResult(pszLeft);
    strResult += strRight;
    return strResult;
}

CString operator+(const CString& strLeft, wchar_t chRight) {
    CString strResult(strLeft);
    strResult += chRight;
    return strResult;
}

CString operator+(wchar_t chLeft, const CString& strRight) {
    CString strResult(chLeft, 1);
    strResult += strRight;
    return strResult;
}
