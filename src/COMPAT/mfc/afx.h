// The foundation classes without user interface: object root with run-time class information, exceptions, strings,
// memory files and archives. A subset of the framework's header of this name, for compilers that do not have it.
#pragma once

#ifdef _WINDOWS_
#error windows.h is included already: the framework must come first
#endif

#include <compat/api.h>

#include <afxstr.h>

#include <cstddef>
#include <vector>

// Checked in every build: a false condition raises CInvalidArgException.
#define ENSURE(condition)                                                                                              \
    do {                                                                                                               \
        if (!(condition))                                                                                              \
            AfxThrowInvalidArgException();                                                                             \
    } while (false)

struct __POSITION {};
typedef __POSITION* POSITION;

// ---- Run-time class information -------------------------------------------------------------------------------------

struct COMPAT_API CRuntimeClass {
    LPCSTR m_lpszClassName;
    const CRuntimeClass* m_pBaseClass; // null: CObject

    BOOL IsDerivedFrom(const CRuntimeClass* pBaseClass) const;
};

#define RUNTIME_CLASS(class_name) (class_name::GetThisClass())

// Root of the framework's classes. Objects are not copied.
class COMPAT_API CObject {
public:
    virtual CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject();

    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;

    BOOL IsKindOf(const CRuntimeClass* pClass) const;

    static CRuntimeClass* GetThisClass();

protected:
    CObject() = default;
};

#define DECLARE_DYNAMIC(class_name)                                                                                    \
public:                                                                                                                \
    static CRuntimeClass* GetThisClass();                                                                              \
    CRuntimeClass* GetRuntimeClass() const override;

#define IMPLEMENT_DYNAMIC(class_name, base_class_name)                                                                 \
    CRuntimeClass* class_name::GetThisClass() {                                                                        \
        static CRuntimeClass s_class = {#class_name, RUNTIME_CLASS(base_class_name)};                                  \
        return &s_class;                                                                                               \
    }                                                                                                                  \
    CRuntimeClass* class_name::GetRuntimeClass() const {                                                               \
        return GetThisClass();                                                                                         \
    }

// pObject when it is of that class or one derived from it, otherwise null; null for null.
COMPAT_API CObject* AfxDynamicDownCast(CRuntimeClass* pClass, CObject* pObject);
#define DYNAMIC_DOWNCAST(class_name, object)                                                                           \
    (static_cast<class_name*>(AfxDynamicDownCast(RUNTIME_CLASS(class_name), object)))

// ---- Exceptions -----------------------------------------------------------------------------------------------------
// Exceptions are thrown by pointer: `catch (CException* pException) { ...; pException->Delete(); }`. Whoever ends the
// handling calls Delete; it frees those that were allocated and leaves the prepared ones alone.

class COMPAT_API CException : public CObject {
    DECLARE_DYNAMIC(CException)
public:
    explicit CException(BOOL bAutoDelete = TRUE);
    ~CException() override;

    void Delete();

private:
    BOOL m_bAutoDelete;
};

class COMPAT_API CMemoryException : public CException {
    DECLARE_DYNAMIC(CMemoryException)
public:
    using CException::CException;
};

class COMPAT_API CInvalidArgException : public CException {
    DECLARE_DYNAMIC(CInvalidArgException)
public:
    using CException::CException;
};

class COMPAT_API CArchiveException : public CException {
    DECLARE_DYNAMIC(CArchiveException)
public:
    enum {
        none = 0,
        readOnly = 2,  // storing into an archive opened for loading
        endOfFile = 3, // loading past the end
        writeOnly = 4, // loading from an archive opened for storing
        badClass = 6,  // something else than what is loaded
    };

    explicit CArchiveException(int nCause);

    int m_cause;
};

[[noreturn]] COMPAT_API void AfxThrowMemoryException();
[[noreturn]] COMPAT_API void AfxThrowInvalidArgException();
[[noreturn]] COMPAT_API void AfxThrowArchiveException(int nCause);

// ---- Files in memory and archives -----------------------------------------------------------------------------------

// A sequence of bytes with a position. Files on disk are not part of this subset.
class COMPAT_API CFile {
public:
    virtual ~CFile();
    virtual void SeekToBegin() = 0;
    // Bytes read: fewer than asked for at the end.
    virtual UINT Read(void* pBuffer, UINT nCount) = 0;
    virtual void Write(const void* pBuffer, UINT nCount) = 0;
};

// A file whose bytes lie in memory; it grows with the writes.
class COMPAT_API CMemFile : public CFile {
public:
    ULONGLONG GetLength() const { return m_bytes.size(); }
    // Cuts the bytes off, or appends zeros; the position stays inside.
    void SetLength(ULONGLONG nNewLength);

    void SeekToBegin() override;
    UINT Read(void* pBuffer, UINT nCount) override;
    void Write(const void* pBuffer, UINT nCount) override;

private:
    std::vector<BYTE> m_bytes;
    std::size_t m_nPosition = 0;
};

// Stores texts to a file or loads them from it, as UTF-16 on every platform. The file stays the caller's and must
// outlive the archive.
class COMPAT_API CArchive {
public:
    enum Mode { store = 0, load = 1 };

    CArchive(CFile* pFile, UINT nMode);
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;

    // Lets go of the file without closing it; no other operation may follow.
    void Close();

    CArchive& operator<<(const CString& strValue);
    // Raises CArchiveException, and leaves the text as it is: endOfFile, or badClass when the bytes are no stored text.
    CArchive& operator>>(CString& strValue);

private:
    void StoreBytes(const void* pBytes, std::size_t nBytes);
    void LoadBytes(void* pBytes, std::size_t nBytes);
    template <class TYPE>
    void StoreNumber(std::size_t nValue);
    template <class TYPE>
    TYPE LoadNumber();

    CFile* m_pFile;
    bool m_bLoading;
};
