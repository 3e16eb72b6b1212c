// An extension module for the tests of loading. It posts the reason of every call of its entry point.

#include <afxwin.h>

namespace {

AFX_EXTENSION_MODULE g_extensionModule{};
int g_nCalls = 0;

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE hInstance, DWORD nReason, LPVOID) {
    PostMessageW(nullptr, WM_APP, nReason, 0);
    if (nReason == DLL_PROCESS_ATTACH) {
        if (!AfxInitExtensionModule(g_extensionModule, hInstance))
            return FALSE;
        new CDynLinkLibrary(g_extensionModule);
    } else if (nReason == DLL_PROCESS_DETACH)
        AfxTermExtensionModule(g_extensionModule);
    return TRUE;
}

extern "C" __declspec(dllexport) int CountCalls() {
    return ++g_nCalls;
}

extern "C" __declspec(dllexport) HMODULE EntryInstance() {
    return g_extensionModule.hModule;
}
