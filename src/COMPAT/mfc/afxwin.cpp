#include <afxwin.h>

#include <compat/testing.h>

#include <utility>
#include <vector>

// ---- Windows --------------------------------------------------------------------------------------------------------

CWnd::~CWnd() {
    if (m_hWnd != nullptr)
        DestroyWindow(m_hWnd);
}

BOOL CWnd::Attach(HWND hWnd) {
    if (hWnd == nullptr)
        return FALSE;
    m_hWnd = hWnd;
    return TRUE;
}

HWND CWnd::Detach() {
    return std::exchange(m_hWnd, nullptr);
}

BOOL CWnd::IsWindowEnabled() const {
    return ::IsWindowEnabled(m_hWnd);
}

BOOL CWnd::EnableWindow(BOOL bEnable) {
    return ::EnableWindow(m_hWnd, bEnable);
}

// ---- Application ----------------------------------------------------------------------------------------------------

namespace {

CWinApp* g_pApp = nullptr;

} // namespace

CWinApp::CWinApp(LPCTSTR) {
    g_pApp = this;
}

CWinApp::~CWinApp() {
    if (g_pApp == this)
        g_pApp = nullptr;
}

CWnd* CWinApp::GetMainWnd() {
    return m_pMainWnd;
}

CWinApp* AfxGetApp() {
    return g_pApp;
}

// ---- Extension modules ----------------------------------------------------------------------------------------------

namespace {

// No lock: the system's loader calls the entry points of all modules one at a time.
std::vector<CDynLinkLibrary*>& Libraries() {
    static auto& libraries = *new std::vector<CDynLinkLibrary*>; // outlives the static objects of all modules
    return libraries;
}
bool g_bFailModuleInit = false;

} // namespace

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule) {
    if (g_bFailModuleInit)
        return FALSE;
    state = {TRUE, hModule};
    return TRUE;
}

void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state) {
    if (!state.bInitialized)
        return;
    for (CDynLinkLibrary*& pLibrary : Libraries()) {
        if (pLibrary->m_hModule == state.hModule)
            delete std::exchange(pLibrary, nullptr);
    }
    std::erase(Libraries(), nullptr);
    state.bInitialized = FALSE;
}

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& state) : m_hModule(state.hModule) {
    Libraries().push_back(this);
}

void CompatFailExtensionModuleInit(bool bFail) {
    g_bFailModuleInit = bFail;
}

int CompatExtensionModuleCount() {
    return static_cast<int>(Libraries().size());
}
