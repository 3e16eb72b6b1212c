// CString: the framework's wide string.
#pragma once

#if defined(_WIN32)
#include <winsock2.h> // must precede windows.h for sources that use both
#endif
#include <windows.h>

#include <compare>
#include <cstdarg>

// What lies in front of the characters of every CString. Strings of one buffer share it; a writer takes a copy first.
struct CStringData {
    int nDataLength;  // characters in use, without the zero
    int nAllocLength; // characters there is room for, without the zero
    long nRefs;       // strings sharing the buffer; negative: the one empty buffer that is never freed

    wchar_t* data() { return reinterpret_cast<wchar_t*>(this + 1); }
};

// A wide string with value semantics. The object is one pointer wide and points at zero-terminated characters. Copies
// share one buffer, counted atomically, until one of them is written; different CString objects may be used in
// different threads. An empty string allocates nothing.
//
// Errors: an index outside [0, GetLength()] raises CInvalidArgException, a failed allocation CMemoryException (both
// thrown by pointer). Null pointers given as text count as the empty text.
//
// Handing a CString to a `...` function is not possible with this compiler's calling convention (it refuses): pass
// GetString().
class COMPAT_API CString {
public:
    CString() noexcept;
    CString(const CString& strOther) noexcept;
    CString(CString&& strOther) noexcept;
    CString(const wchar_t* pszText); // NOLINT: converts as the framework's does
    CString(const wchar_t* pchText, int nLength);
    explicit CString(wchar_t chRepeated, int nCount = 1);
    ~CString();

    CString& operator=(const CString& strOther) noexcept;
    CString& operator=(CString&& strOther) noexcept;
    CString& operator=(const wchar_t* pszText);

    CString& operator+=(const CString& strText);
    CString& operator+=(const wchar_t* pszText);
    CString& operator+=(wchar_t ch);

    // The characters stay valid until this string is next changed or destroyed.
    operator const wchar_t*() const noexcept { return m_pszData; }
    const wchar_t* GetString() const noexcept { return m_pszData; }

    int GetLength() const noexcept { return GetData()->nDataLength; }
    bool IsEmpty() const noexcept { return GetLength() == 0; }
    void Empty() noexcept;

    // nIndex == GetLength() reads the terminating zero.
    wchar_t GetAt(int nIndex) const;
    wchar_t operator[](int nIndex) const { return GetAt(nIndex); }

    void SetString(const wchar_t* pchText, int nLength);
    void Append(const wchar_t* pszText);
    void Append(const wchar_t* pchText, int nLength);

    // Negative counts and positions are taken as 0, those past the end as the end.
    CString Left(int nCount) const;
    CString Mid(int nFirst) const;
    CString Mid(int nFirst, int nCount) const;

    // Position of the first occurrence at or after nStart, -1 without one.
    int Find(wchar_t ch, int nStart = 0) const noexcept;
    int Find(const wchar_t* pszText, int nStart = 0) const noexcept;

    // Negative, 0 or positive, by character value.
    int Compare(const wchar_t* pszText) const noexcept;

    // Takes characters out, nothing for a count that is not positive. Returns the new length.
    int Delete(int nIndex, int nCount = 1);

    // printf-like formatting with the Windows meaning on every platform. Of the conversions there are %s (wide text; a
    // null text prints "(null)"), %d and %%, without flags or widths; any other raises CInvalidArgException. Arguments
    // may point into this string.
    void Format(const wchar_t* pszFormat, ...);
    void FormatV(const wchar_t* pszFormat, va_list args);
    void AppendFormat(const wchar_t* pszFormat, ...);

    // Own, writable characters of the given number; ReleaseBuffer then sets the length, which must not be larger.
    wchar_t* GetBufferSetLength(int nLength);
    void ReleaseBuffer(int nNewLength);
    // Makes room for nLength characters, so that appending up to there moves nothing.
    void Preallocate(int nLength);

    // The other comparisons follow from these. Without the ones for the order, '<' would compare addresses.
    friend bool operator==(const CString& strLeft, const CString& strRight) { return strLeft.Compare(strRight) == 0; }
    friend bool operator==(const CString& strLeft, const wchar_t* pszRight) { return strLeft.Compare(pszRight) == 0; }
    friend std::weak_ordering operator<=>(const CString& strLeft, const CString& strRight) {
        return strLeft.Compare(strRight) <=> 0;
    }
    friend std::weak_ordering operator<=>(const CString& strLeft, const wchar_t* pszRight) {
        return strLeft.Compare(pszRight) <=> 0;
    }

private:
    CStringData* GetData() const noexcept { return reinterpret_cast<CStringData*>(m_pszData) - 1; }
    void MakeWritable(int nMinLength);
    void SetLength(int nLength) noexcept;
    bool PointsInside(const wchar_t* pchText) const noexcept;
    void ReplaceRange(int nFirst, int nRemoved, const wchar_t* pchInserted, int nInserted);

    wchar_t* m_pszData;
};

COMPAT_API CString operator+(const CString& strLeft, const CString& strRight);
COMPAT_API CString operator+(const CString& strLeft, const wchar_t* pszRight);
COMPAT_API CString operator+(const wchar_t* pszLeft, const CString& strRight);
COMPAT_API CString operator+(const CString& strLeft, wchar_t chRight);
COMPAT_API CString operator+(wchar_t chLeft, const CString& strRight);
