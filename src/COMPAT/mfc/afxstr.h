// CString: the framework's wide string.
#pragma once

#if defined(_WIN32)
#include <winsock2.h> // must precede windows.h for sources that use both
#endif
#include <windows.h>

#include <tchar.h>

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
    typedef wchar_t XCHAR;
    typedef wchar_t* PXSTR;
    typedef const wchar_t* PCXSTR;

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
    CString& operator=(wchar_t ch);

    CString& operator+=(const CString& strText);
    CString& operator+=(const wchar_t* pszText);
    CString& operator+=(wchar_t ch);

    // The characters stay valid until this string is next changed or destroyed.
    operator const wchar_t*() const noexcept { return m_pszData; }
    const wchar_t* GetString() const noexcept { return m_pszData; }

    int GetLength() const noexcept { return GetData()->nDataLength; }
    int GetAllocLength() const noexcept { return GetData()->nAllocLength; }
    bool IsEmpty() const noexcept { return GetLength() == 0; }
    void Empty() noexcept;

    // nIndex == GetLength() reads the terminating zero.
    wchar_t GetAt(int nIndex) const;
    wchar_t operator[](int nIndex) const { return GetAt(nIndex); }
    // nIndex must lie below GetLength().
    void SetAt(int nIndex, wchar_t ch);

    void SetString(const wchar_t* pszText);
    void SetString(const wchar_t* pchText, int nLength);
    void Append(const CString& strText);
    void Append(const wchar_t* pszText);
    void Append(const wchar_t* pchText, int nLength);
    void AppendChar(wchar_t ch);

    // Negative counts and positions are taken as 0, those past the end as the end.
    CString Left(int nCount) const;
    CString Right(int nCount) const;
    CString Mid(int nFirst) const;
    CString Mid(int nFirst, int nCount) const;

    // Position of the first occurrence at or after nStart, -1 without one.
    int Find(wchar_t ch, int nStart = 0) const noexcept;
    int Find(const wchar_t* pszText, int nStart = 0) const noexcept;
    int FindOneOf(const wchar_t* pszCharacters) const noexcept;
    int ReverseFind(wchar_t ch) const noexcept;

    // Negative, 0 or positive, by character value.
    int Compare(const wchar_t* pszText) const noexcept;
    int CompareNoCase(const wchar_t* pszText) const noexcept;

    CString& MakeUpper();
    CString& MakeLower();
    CString& MakeReverse();

    // Number of replacements or of removed characters.
    int Replace(wchar_t chOld, wchar_t chNew);
    int Replace(const wchar_t* pszOld, const wchar_t* pszNew);
    int Remove(wchar_t ch);
    // New length. Insert takes a negative position as 0 and one past the end as the end; Delete ignores counts that
    // are not positive.
    int Insert(int nIndex, wchar_t ch);
    int Insert(int nIndex, const wchar_t* pszText);
    int Delete(int nIndex, int nCount = 1);

    // Without argument white space is removed, otherwise the given characters.
    CString& Trim();
    CString& Trim(wchar_t ch);
    CString& Trim(const wchar_t* pszCharacters);
    CString& TrimLeft();
    CString& TrimLeft(wchar_t ch);
    CString& TrimLeft(const wchar_t* pszCharacters);
    CString& TrimRight();
    CString& TrimRight(wchar_t ch);
    CString& TrimRight(const wchar_t* pszCharacters);

    // Next piece between separator characters, from nStart on; empty pieces are skipped. nStart is moved behind the
    // piece, and becomes -1 (with an empty result) when there is none left.
    CString Tokenize(const wchar_t* pszSeparators, int& nStart) const;

    // printf-like formatting with the Windows meaning on every platform: %s and %c take wide text or characters (%S,
    // %C, %hs, %hc narrow ones in ASCII), `l` means 32 bits, `ll` and `I64` 64 bits, `I` and `z` pointer size. A null
    // text prints "(null)". Arguments may point into this string.
    void Format(const wchar_t* pszFormat, ...);
    void FormatV(const wchar_t* pszFormat, va_list args);
    void AppendFormat(const wchar_t* pszFormat, ...);
    void AppendFormatV(const wchar_t* pszFormat, va_list args);

    // Own, writable characters, with room for nMinLength and a zero. After writing, ReleaseBuffer sets the length: the
    // given one, or up to the first zero for -1.
    wchar_t* GetBuffer();
    wchar_t* GetBuffer(int nMinLength);
    wchar_t* GetBufferSetLength(int nLength);
    void ReleaseBuffer(int nNewLength = -1);
    void Preallocate(int nLength);
    // Gives back unused room.
    void FreeExtra();

    friend bool operator==(const CString& strLeft, const CString& strRight) { return strLeft.Compare(strRight) == 0; }
    friend bool operator==(const CString& strLeft, const wchar_t* pszRight) { return strLeft.Compare(pszRight) == 0; }
    friend bool operator==(const wchar_t* pszLeft, const CString& strRight) { return strRight.Compare(pszLeft) == 0; }
    friend bool operator!=(const CString& strLeft, const CString& strRight) { return strLeft.Compare(strRight) != 0; }
    friend bool operator!=(const CString& strLeft, const wchar_t* pszRight) { return strLeft.Compare(pszRight) != 0; }
    friend bool operator!=(const wchar_t* pszLeft, const CString& strRight) { return strRight.Compare(pszLeft) != 0; }
    friend bool operator<(const CString& strLeft, const CString& strRight) { return strLeft.Compare(strRight) < 0; }
    friend bool operator<(const CString& strLeft, const wchar_t* pszRight) { return strLeft.Compare(pszRight) < 0; }
    friend bool operator<(const wchar_t* pszLeft, const CString& strRight) { return strRight.Compare(pszLeft) > 0; }
    friend bool operator>(const CString& strLeft, const CString& strRight) { return strLeft.Compare(strRight) > 0; }
    friend bool operator>(const CString& strLeft, const wchar_t* pszRight) { return strLeft.Compare(pszRight) > 0; }
    friend bool operator>(const wchar_t* pszLeft, const CString& strRight) { return strRight.Compare(pszLeft) < 0; }
    friend bool operator<=(const CString& strLeft, const CString& strRight) { return strLeft.Compare(strRight) <= 0; }
    friend bool operator<=(const CString& strLeft, const wchar_t* pszRight) { return strLeft.Compare(pszRight) <= 0; }
    friend bool operator<=(const wchar_t* pszLeft, const CString& strRight) { return strRight.Compare(pszLeft) >= 0; }
    friend bool operator>=(const CString& strLeft, const CString& strRight) { return strLeft.Compare(strRight) >= 0; }
    friend bool operator>=(const CString& strLeft, const wchar_t* pszRight) { return strLeft.Compare(pszRight) >= 0; }
    friend bool operator>=(const wchar_t* pszLeft, const CString& strRight) { return strRight.Compare(pszLeft) <= 0; }

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

typedef CString CStringW;
