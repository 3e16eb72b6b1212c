// Extension modules: libraries that share the program's framework run-time.
#pragma once

// Belongs to the module, as a static object; the framework fills it.
struct AFX_EXTENSION_MODULE {
    BOOL bInitialized;
    HMODULE hModule;
};

// Called from DllMain on process attach, before a CDynLinkLibrary is made. FALSE: the module must refuse to be loaded.
COMPAT_API BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule);
// Called from DllMain on process detach. Deletes the module's CDynLinkLibrary objects.
COMPAT_API void AfxTermExtensionModule(AFX_EXTENSION_MODULE& state);

// Entry of a module in the framework's list of modules. Made with new; belongs to the framework, which deletes it in
// AfxTermExtensionModule.
class COMPAT_API CDynLinkLibrary {
public:
    explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& state);
    CDynLinkLibrary(const CDynLinkLibrary&) = delete;
    CDynLinkLibrary& operator=(const CDynLinkLibrary&) = delete;

    const HMODULE m_hModule;
};
