#include <afxwin.h>

#include <compat/testing.h>

#include <atomic>
#include <mutex>

// ---- Command targets and windows ------------------------------------------------------------------------------------

IMPLEMENT_DYNAMIC(CCmdTarget, CObject)
CCmdTarget::CCmdTarget() = default;
CCmdTarget::~CCmdTarget() = default;

IMPLEMENT_DYNAMIC(CWnd, CCmdTarget)

CWnd::CWnd() : m_hWnd(nullptr) {}
CWnd::CWnd(HWND hWnd) : m_hWnd(hWnd) {}

CWnd::~CWnd() {
    CWnd::DestroyWindow();
}

BOOL CWnd::Attach(HWND hWnd) {
    if (hWnd == nullptr)
        return FALSE;
    m_hWnd = hWnd;
    return TRUE;
}

HWND CWnd::Detach() {
    HWND hWnd = m_hWnd;
    m_hWnd = nullptr;
    return hWnd;
}

BOOL CWnd::DestroyWindow() {
    HWND hWnd = Detach();
    return hWnd != nullptr && ::DestroyWindow(hWnd);
}

BOOL CWnd::IsWindowEnabled() const {
    return ::IsWindowEnabled(m_hWnd);
}

BOOL CWnd::EnableWindow(BOOL bEnable) {
    return ::EnableWindow(m_hWnd, bEnable);
}

BOOL CWnd::IsWindowVisible() const {
    return ::IsWindowVisible(m_hWnd);
}

BOOL CWnd::IsIconic() const {
    return ::IsIconic(m_hWnd);
}

BOOL CWnd::ShowWindow(int nCommand) {
    return ::ShowWindow(m_hWnd, nCommand);
}

LRESULT CWnd::SendMessage(UINT nMessage, WPARAM wParam, LPARAM lParam) {
    return ::SendMessageW(m_hWnd, nMessage, wParam, lParam);
}

BOOL CWnd::PostMessage(UINT nMessage, WPARAM wParam, LPARAM lParam) {
    return ::PostMessageW(m_hWnd, nMessage, wParam, lParam);
}

// ---- Application ----------------------------------------------------------------------------------------------------

namespace {

CWinApp* g_pApp = nullptr;
HINSTANCE g_hResource = nullptr; // null: the program itself

} // namespace

IMPLEMENT_DYNAMIC(CWinThread, CCmdTarget)

CWinThread::CWinThread() : m_pMainWnd(nullptr) {}
CWinThread::~CWinThread() = default;

BOOL CWinThread::InitInstance() {
    return FALSE; // as documented: a thread without its own initialisation does not run
}

int CWinThread::ExitInstance() {
    return 0;
}

CWnd* CWinThread::GetMainWnd() {
    return m_pMainWnd;
}

IMPLEMENT_DYNAMIC(CWinApp, CWinThread)

CWinApp::CWinApp(LPCTSTR pszAppName) : m_hInstance(GetModuleHandleW(nullptr)), m_strAppName(pszAppName) {
    g_pApp = this;
}

CWinApp::~CWinApp() {
    if (g_pApp == this)
        g_pApp = nullptr;
}

BOOL CWinApp::InitInstance() {
    return TRUE;
}

int CWinApp::ExitInstance() {
    return 0;
}

CWinApp* AFXAPI AfxGetApp() {
    return g_pApp;
}

CWinThread* AFXAPI AfxGetThread() {
    return g_pApp;
}

CWnd* AFXAPI AfxGetMainWnd() {
    CWinThread* pThread = AfxGetThread();
    return pThread == nullptr ? nullptr : pThread->GetMainWnd();
}

HINSTANCE AFXAPI AfxGetInstanceHandle() {
    return g_pApp == nullptr ? GetModuleHandleW(nullptr) : g_pApp->m_hInstance;
}

HINSTANCE AFXAPI AfxGetResourceHandle() {
    return g_hResource == nullptr ? AfxGetInstanceHandle() : g_hResource;
}

void AFXAPI AfxSetResourceHandle(HINSTANCE hInstance) {
    g_hResource = hInstance;
}

// ---- Extension modules ----------------------------------------------------------------------------------------------

namespace {

std::recursive_mutex g_libraryMutex; // guards the list
CDynLinkLibrary* g_pFirstLibrary = nullptr;
std::atomic<bool> g_bFailModuleInit = false;

} // namespace

BOOL AFXAPI AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule) {
    if (g_bFailModuleInit)
        return FALSE;
    state.bInitialized = TRUE;
    state.hModule = hModule;
    state.hResource = hModule;
    state.pFirstSharedClass = nullptr;
    return TRUE;
}

void AFXAPI AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL bAll) {
    if (!state.bInitialized)
        return;
    const std::lock_guard lock(g_libraryMutex);
    CDynLinkLibrary* pNext = nullptr;
    for (CDynLinkLibrary* pLibrary = g_pFirstLibrary; pLibrary != nullptr; pLibrary = pNext) {
        pNext = pLibrary->m_pNextDLL;
        if (bAll || pLibrary->m_hModule == state.hModule)
            delete pLibrary;
    }
    state.bInitialized = FALSE;
}

IMPLEMENT_DYNAMIC(CDynLinkLibrary, CCmdTarget)

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL bSystem)
    : m_hModule(state.hModule), m_hResource(state.hResource), m_bSystem(bSystem) {
    const std::lock_guard lock(g_libraryMutex);
    m_pNextDLL = g_pFirstLibrary;
    g_pFirstLibrary = this;
}

CDynLinkLibrary::~CDynLinkLibrary() {
    const std::lock_guard lock(g_libraryMutex);
    CDynLinkLibrary** ppLink = &g_pFirstLibrary;
    while (*ppLink != this)
        ppLink = &(*ppLink)->m_pNextDLL;
    *ppLink = m_pNextDLL;
}

HINSTANCE AFXAPI AfxFindResourceHandle(LPCTSTR pszName, LPCTSTR pszType) {
    if (FindResourceW(AfxGetResourceHandle(), pszName, pszType) == nullptr) {
        const std::lock_guard lock(g_libraryMutex);
        for (CDynLinkLibrary* pLibrary = g_pFirstLibrary; pLibrary != nullptr; pLibrary = pLibrary->m_pNextDLL) {
            if (pLibrary->m_hResource != nullptr && FindResourceW(pLibrary->m_hResource, pszName, pszType) != nullptr)
                return pLibrary->m_hResource;
        }
    }
    return AfxGetResourceHandle();
}

void CompatFailExtensionModuleInit(bool bFail) {
    g_bFailModuleInit = bFail;
}

int CompatExtensionModuleCount() {
    const std::lock_guard lock(g_libraryMutex);
    int nCount = 0;
    for (CDynLinkLibrary* pLibrary = g_pFirstLibrary; pLibrary != nullptr; pLibrary = pLibrary->m_pNextDLL)
        nCount++;
    return nCount;
}
