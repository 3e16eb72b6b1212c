#include <afx.h>

namespace {

// The prepared exceptions, so that throwing one allocates no framework object; Delete leaves them alone.
CMemoryException g_memoryException(FALSE);
CInvalidArgException g_invalidArgException(FALSE);

} // namespace

IMPLEMENT_DYNAMIC(CException, CObject)

CException::CException(BOOL bAutoDelete) : m_bAutoDelete(bAutoDelete) {}
CException::~CException() = default;

void CException::Delete() {
    if (m_bAutoDelete)
        delete this;
}

IMPLEMENT_DYNAMIC(CMemoryException, CException)
IMPLEMENT_DYNAMIC(CInvalidArgException, CException)
IMPLEMENT_DYNAMIC(CArchiveException, CException)

CArchiveException::CArchiveException(int nCause) : m_cause(nCause) {}

void AfxThrowMemoryException() {
    throw &g_memoryException;
}

void AfxThrowInvalidArgException() {
    throw &g_invalidArgException;
}

void AfxThrowArchiveException(int nCause) {
    throw new CArchiveException(nCause);
}
