#include "plugin/Module.h"

#include <afxdllx.h>

namespace {

AFX_EXTENSION_MODULE s_extensionModule = {};

// Every module of the host registers these messages when it loads.
[[maybe_unused]] const UINT s_nTrackerHandMsg = RegisterWindowMessageW(L"TrackerHandMsg");
[[maybe_unused]] const UINT s_nTrackerGestureMsg = RegisterWindowMessageW(L"TrackerGestureMsg");

} // namespace

HINSTANCE ModuleInstance() {
    return s_extensionModule.hModule;
}

/// Entry point for loading and unloading: 0 refuses loading.
extern "C" int APIENTRY DllMain(HINSTANCE hInstance, DWORD dwReason, LPVOID /*pReserved*/) {
    if (dwReason == DLL_PROCESS_ATTACH) {
        if (!AfxInitExtensionModule(s_extensionModule, hInstance)) {
            return 0;
        }
        new CDynLinkLibrary(s_extensionModule); // the framework owns it until AfxTermExtensionModule
    } else if (dwReason == DLL_PROCESS_DETACH) {
        AfxTermExtensionModule(s_extensionModule);
    }
    return 1;
}
