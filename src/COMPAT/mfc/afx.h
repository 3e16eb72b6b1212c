// The foundation classes without user interface: object root with run-time class information, exceptions, strings,
// memory files and archives. A subset of the framework's header of this name, for compilers that do not have it.
#pragma once

#include <compat/api.h>

#include <afxstr.h>

#include <cassert>
#include <cstddef>
#include <cstdint>

// ---- Diagnostics ----------------------------------------------------------------------------------------------------

#ifndef ASSERT
#define ASSERT(condition) assert(condition)
#endif
#ifndef VERIFY
#if defined(NDEBUG)
#define VERIFY(condition) ((void)(condition))
#else
#define VERIFY(condition) assert(condition)
#endif
#endif
#ifndef TRACE
#define TRACE(...) ((void)0)
#endif
#define ASSERT_VALID(pObject) ((void)(pObject))
// Checked in every build: a false condition raises CInvalidArgException.
#define ENSURE(condition)                                                                                              \
    do {                                                                                                               \
        if (!(condition))                                                                                              \
            AfxThrowInvalidArgException();                                                                             \
    } while (false)
#define ENSURE_ARG(condition) ENSURE(condition)

#define AFX_EXT_CLASS
#define AFXAPI __stdcall
#define AFX_CDECL __cdecl

class CArchive;
class CDumpContext;
class CObject;
class CException;

struct __POSITION {};
typedef __POSITION* POSITION;

// ---- Run-time class information -------------------------------------------------------------------------------------

struct COMPAT_API CRuntimeClass {
    LPCSTR m_lpszClassName;
    int m_nObjectSize; // bytes
    UINT m_wSchema;
    CObject*(PASCAL* m_pfnCreateObject)(); // null: not dynamically creatable
    CRuntimeClass*(PASCAL* m_pfnGetBaseClass)();
    CRuntimeClass* m_pNextClass;

    // A new object that the caller owns; null when the class does not support it.
    CObject* CreateObject();
    BOOL IsDerivedFrom(const CRuntimeClass* pBaseClass) const;
};

#define RUNTIME_CLASS(class_name) (class_name::GetThisClass())

// Root of the framework's classes. Objects are not copied.
class COMPAT_API CObject {
public:
    virtual CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject();
    virtual void Serialize(CArchive& ar);
    virtual void AssertValid() const;
    virtual void Dump(CDumpContext& dc) const;

    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;

    BOOL IsSerializable() const;
    BOOL IsKindOf(const CRuntimeClass* pClass) const;

    static const CRuntimeClass classCObject;
    static CRuntimeClass* PASCAL GetThisClass();

protected:
    CObject() = default;
};

#define DECLARE_DYNAMIC(class_name)                                                                                    \
protected:                                                                                                             \
    static CRuntimeClass* PASCAL _GetBaseClass();                                                                      \
                                                                                                                       \
public:                                                                                                                \
    static const CRuntimeClass class##class_name;                                                                      \
    static CRuntimeClass* PASCAL GetThisClass();                                                                       \
    CRuntimeClass* GetRuntimeClass() const override;

#define DECLARE_DYNCREATE(class_name)                                                                                  \
    DECLARE_DYNAMIC(class_name)                                                                                        \
    static CObject* PASCAL CreateObject();

#define IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, wSchema, pfnNew)                                           \
    CRuntimeClass* PASCAL class_name::_GetBaseClass() {                                                                \
        return RUNTIME_CLASS(base_class_name);                                                                         \
    }                                                                                                                  \
    const CRuntimeClass class_name::class##class_name = {#class_name, static_cast<int>(sizeof(class_name)), wSchema,   \
                                                         pfnNew,      &class_name::_GetBaseClass,           nullptr};  \
    CRuntimeClass* PASCAL class_name::GetThisClass() {                                                                 \
        return const_cast<CRuntimeClass*>(&class_name::class##class_name);                                             \
    }                                                                                                                  \
    CRuntimeClass* class_name::GetRuntimeClass() const {                                                               \
        return GetThisClass();                                                                                         \
    }

#define IMPLEMENT_DYNAMIC(class_name, base_class_name)                                                                 \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, nullptr)

#define IMPLEMENT_DYNCREATE(class_name, base_class_name)                                                               \
    CObject* PASCAL class_name::CreateObject() {                                                                       \
        return new class_name;                                                                                         \
    }                                                                                                                  \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, &class_name::CreateObject)

// pObject when it is of that class or one derived from it, otherwise null; null for null.
COMPAT_API CObject* AFXAPI AfxDynamicDownCast(CRuntimeClass* pClass, CObject* pObject);
COMPAT_API const CObject* AFXAPI AfxDynamicDownCast(CRuntimeClass* pClass, const CObject* pObject);
#define DYNAMIC_DOWNCAST(class_name, object)                                                                           \
    (static_cast<class_name*>(AfxDynamicDownCast(RUNTIME_CLASS(class_name), object)))
#define STATIC_DOWNCAST(class_name, object) (static_cast<class_name*>(object))

// ---- Exceptions -----------------------------------------------------------------------------------------------------
// Exceptions are thrown by pointer: `catch (CException* pException) { ...; pException->Delete(); }`. Whoever ends the
// handling calls Delete; it frees those that were allocated and leaves the prepared ones alone.

class COMPAT_API CException : public CObject {
    DECLARE_DYNAMIC(CException)
public:
    CException();
    explicit CException(BOOL bAutoDelete);
    ~CException() override;

    void Delete();
    // Writes a short English text, cut to nMaxError characters with the zero; FALSE (and an empty text) without one.
    virtual BOOL GetErrorMessage(LPTSTR pszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const;

protected:
    BOOL m_bAutoDelete;
};

class COMPAT_API CSimpleException : public CException {
    DECLARE_DYNAMIC(CSimpleException)
public:
    CSimpleException();
    explicit CSimpleException(BOOL bAutoDelete);
};

class COMPAT_API CMemoryException : public CSimpleException {
    DECLARE_DYNAMIC(CMemoryException)
public:
    CMemoryException();
    explicit CMemoryException(BOOL bAutoDelete);
    BOOL GetErrorMessage(LPTSTR pszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const override;
};

class COMPAT_API CNotSupportedException : public CSimpleException {
    DECLARE_DYNAMIC(CNotSupportedException)
public:
    CNotSupportedException();
    explicit CNotSupportedException(BOOL bAutoDelete);
    BOOL GetErrorMessage(LPTSTR pszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const override;
};

class COMPAT_API CInvalidArgException : public CSimpleException {
    DECLARE_DYNAMIC(CInvalidArgException)
public:
    CInvalidArgException();
    explicit CInvalidArgException(BOOL bAutoDelete);
    BOOL GetErrorMessage(LPTSTR pszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const override;
};

class COMPAT_API CArchiveException : public CException {
    DECLARE_DYNAMIC(CArchiveException)
public:
    enum {
        none,
        genericException,
        readOnly,  // storing into an archive opened for loading
        endOfFile, // loading past the end
        writeOnly, // loading from an archive opened for storing
        badIndex,
        badClass,
        badSchema,
        bufferFull
    };

    explicit CArchiveException(int nCause = none, LPCTSTR pszArchiveName = nullptr);
    ~CArchiveException() override;
    BOOL GetErrorMessage(LPTSTR pszError, UINT nMaxError, PUINT pnHelpContext = nullptr) const override;

    int m_cause;
    CString m_strFileName;
};

[[noreturn]] COMPAT_API void AFXAPI AfxThrowMemoryException();
[[noreturn]] COMPAT_API void AFXAPI AfxThrowNotSupportedException();
[[noreturn]] COMPAT_API void AFXAPI AfxThrowInvalidArgException();
[[noreturn]] COMPAT_API void AFXAPI AfxThrowArchiveException(int nCause, LPCTSTR pszArchiveName = nullptr);

// ---- Files in memory and archives -----------------------------------------------------------------------------------

// A sequence of bytes with a position. Files on disk are not part of this subset.
class COMPAT_API CFile : public CObject {
    DECLARE_DYNAMIC(CFile)
public:
    enum SeekPosition { begin, current, end };

    ~CFile() override;
    virtual ULONGLONG GetPosition() const = 0;
    // New position; one before the beginning raises CInvalidArgException.
    virtual ULONGLONG Seek(LONGLONG nOffset, UINT nFrom) = 0;
    virtual void SetLength(ULONGLONG nNewLength) = 0;
    virtual ULONGLONG GetLength() const = 0;
    // Bytes read: fewer than asked for at the end.
    virtual UINT Read(void* pBuffer, UINT nCount) = 0;
    virtual void Write(const void* pBuffer, UINT nCount) = 0;
    virtual void Flush() = 0;
    virtual void Close() = 0;

    ULONGLONG SeekToEnd() { return Seek(0, end); }
    void SeekToBegin() { Seek(0, begin); }

protected:
    CFile() = default;
};

// A file whose bytes lie in memory: its own, growing with the writes, or a caller's.
class COMPAT_API CMemFile : public CFile {
    DECLARE_DYNAMIC(CMemFile)
public:
    explicit CMemFile(UINT nGrowBytes = 1024);
    // The bytes stay the caller's and must outlive the file; see Attach.
    CMemFile(BYTE* pBuffer, UINT nBufferSize, UINT nGrowBytes = 0);
    ~CMemFile() override;

    // Works on the caller's bytes. nGrowBytes 0: the file has nBufferSize bytes and cannot grow (writing past them
    // raises CMemoryException); otherwise pBuffer comes from malloc, the file starts empty, takes it over and may
    // reallocate it.
    void Attach(BYTE* pBuffer, UINT nBufferSize, UINT nGrowBytes = 0);
    // Hands the bytes to the caller (free() them if the file allocated them) and empties the file.
    BYTE* Detach();

    ULONGLONG GetPosition() const override;
    ULONGLONG Seek(LONGLONG nOffset, UINT nFrom) override;
    void SetLength(ULONGLONG nNewLength) override;
    ULONGLONG GetLength() const override;
    UINT Read(void* pBuffer, UINT nCount) override;
    void Write(const void* pBuffer, UINT nCount) override;
    void Flush() override;
    void Close() override;

private:
    void Grow(std::size_t nNewSize);

    BYTE* m_pBuffer = nullptr;
    std::size_t m_nBufferSize = 0;
    std::size_t m_nFileSize = 0;
    std::size_t m_nPosition = 0;
    std::size_t m_nGrowBytes = 0;
    bool m_bOwnsBuffer = true;
};

// Stores values to a file or loads them from it, as little-endian bytes; both directions need the same order of the
// same types. Texts are stored as UTF-16 on every platform. The file stays the caller's and must outlive the archive.
class COMPAT_API CArchive {
public:
    enum Mode { store = 0, load = 1 };

    // nBufferSize and pBuffer are taken for compatibility; the archive does not buffer.
    CArchive(CFile* pFile, UINT nMode, int nBufferSize = 4096, void* pBuffer = nullptr);
    ~CArchive();
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;

    BOOL IsLoading() const { return m_bLoading; }
    BOOL IsStoring() const { return !m_bLoading; }
    CFile* GetFile() const { return m_pFile; }

    // Bytes read, fewer than asked for at the end. Loading operators raise CArchiveException (endOfFile) instead.
    UINT Read(void* pBuffer, UINT nMax);
    void Write(const void* pBuffer, UINT nMax);
    void WriteString(LPCTSTR pszText); // the bare UTF-16 characters, without length
    void Flush();
    // Lets go of the file without closing it; no other operation may follow.
    void Close();
    void Abort();

    CArchive& operator<<(BYTE nValue);
    CArchive& operator<<(char nValue);
    CArchive& operator<<(short nValue);
    CArchive& operator<<(WORD nValue);
    CArchive& operator<<(int nValue);
    CArchive& operator<<(unsigned nValue);
    CArchive& operator<<(long nValue); // in the compiler's own width
    CArchive& operator<<(unsigned long nValue);
    CArchive& operator<<(LONGLONG nValue);
    CArchive& operator<<(ULONGLONG nValue);
    CArchive& operator<<(float fValue);
    CArchive& operator<<(double fValue);
    CArchive& operator<<(bool bValue);
    CArchive& operator<<(const CString& strValue);

    CArchive& operator>>(BYTE& nValue);
    CArchive& operator>>(char& nValue);
    CArchive& operator>>(short& nValue);
    CArchive& operator>>(WORD& nValue);
    CArchive& operator>>(int& nValue);
    CArchive& operator>>(unsigned& nValue);
    CArchive& operator>>(long& nValue);
    CArchive& operator>>(unsigned long& nValue);
    CArchive& operator>>(LONGLONG& nValue);
    CArchive& operator>>(ULONGLONG& nValue);
    CArchive& operator>>(float& fValue);
    CArchive& operator>>(double& fValue);
    CArchive& operator>>(bool& bValue);
    CArchive& operator>>(CString& strValue);

private:
    template <class TYPE>
    void StoreValue(TYPE value);
    template <class TYPE>
    void LoadValue(TYPE& value);

    CFile* m_pFile;
    BOOL m_bLoading;
};
