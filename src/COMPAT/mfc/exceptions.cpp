#include <afx.h>

#include <algorithm>
#include <cwchar>

namespace {

// The prepared exceptions, so that throwing one allocates no framework object; Delete leaves them alone.
CMemoryException g_memoryException(FALSE);
CNotSupportedException g_notSupportedException(FALSE);
CInvalidArgException g_invalidArgException(FALSE);

BOOL CopyMessage(const wchar_t* pszMessage, LPTSTR pszError, UINT nMaxError, PUINT pnHelpContext) {
    if (pnHelpContext != nullptr)
        *pnHelpContext = 0;
    if (pszError == nullptr || nMaxError == 0)
        return FALSE;
    const std::size_t nLength = std::min<std::size_t>(std::wcslen(pszMessage), nMaxError - 1);
    std::wmemcpy(pszError, pszMessage, nLength);
    pszError[nLength] = 0;
    return *pszMessage != 0;
}

} // namespace

IMPLEMENT_DYNAMIC(CException, CObject)

CException::CException() : m_bAutoDelete(TRUE) {}
CException::CException(BOOL bAutoDelete) : m_bAutoDelete(bAutoDelete) {}
CException::~CException() = default;

void CException::Delete() {
    if (m_bAutoDelete)
        delete this;
}

BOOL CException::GetErrorMessage(LPTSTR pszError, UINT nMaxError, PUINT pnHelpContext) const {
    return CopyMessage(L"", pszError, nMaxError, pnHelpContext);
}

IMPLEMENT_DYNAMIC(CSimpleException, CException)

CSimpleException::CSimpleException() = default;
CSimpleException::CSimpleException(BOOL bAutoDelete) : CException(bAutoDelete) {}

IMPLEMENT_DYNAMIC(CMemoryException, CSimpleException)

CMemoryException::CMemoryException() = default;
CMemoryException::CMemoryException(BOOL bAutoDelete) : CSimpleException(bAutoDelete) {}

BOOL CMemoryException::GetErrorMessage(LPTSTR pszError, UINT nMaxError, PUINT pnHelpContext) const {
    return CopyMessage(L"Out of memory.", pszError, nMaxError, pnHelpContext);
}

IMPLEMENT_DYNAMIC(CNotSupportedException, CSimpleException)

CNotSupportedException::CNotSupportedException() = default;
CNotSupportedException::CNotSupportedException(BOOL bAutoDelete) : CSimpleException(bAutoDelete) {}

BOOL CNotSupportedException::GetErrorMessage(LPTSTR pszError, UINT nMaxError, PUINT pnHelpContext) const {
    return CopyMessage(L"An unsupported operation was attempted.", pszError, nMaxError, pnHelpContext);
}

IMPLEMENT_DYNAMIC(CInvalidArgException, CSimpleException)

CInvalidArgException::CInvalidArgException() = default;
CInvalidArgException::CInvalidArgException(BOOL bAutoDelete) : CSimpleException(bAutoDelete) {}

BOOL CInvalidArgException::GetErrorMessage(LPTSTR pszError, UINT nMaxError, PUINT pnHelpContext) const {
    return CopyMessage(L"An invalid argument was encountered.", pszError, nMaxError, pnHelpContext);
}

IMPLEMENT_DYNAMIC(CArchiveException, CException)

CArchiveException::CArchiveException(int nCause, LPCTSTR pszArchiveName)
    : m_cause(nCause), m_strFileName(pszArchiveName) {}
CArchiveException::~CArchiveException() = default;

BOOL CArchiveException::GetErrorMessage(LPTSTR pszError, UINT nMaxError, PUINT pnHelpContext) const {
    const wchar_t* pszMessage = L"An error occurred while accessing an archive.";
    switch (m_cause) {
    case none:
        pszMessage = L"";
        break;
    case readOnly:
        pszMessage = L"An attempt was made to store into an archive opened for loading.";
        break;
    case endOfFile:
        pszMessage = L"An attempt was made to load past the end of an archive.";
        break;
    case writeOnly:
        pszMessage = L"An attempt was made to load from an archive opened for storing.";
        break;
    default:
        break;
    }
    return CopyMessage(pszMessage, pszError, nMaxError, pnHelpContext);
}

void AFXAPI AfxThrowMemoryException() {
    throw &g_memoryException;
}

void AFXAPI AfxThrowNotSupportedException() {
    throw &g_notSupportedException;
}

void AFXAPI AfxThrowInvalidArgException() {
    throw &g_invalidArgException;
}

void AFXAPI AfxThrowArchiveException(int nCause, LPCTSTR pszArchiveName) {
    throw new CArchiveException(nCause, pszArchiveName);
}
