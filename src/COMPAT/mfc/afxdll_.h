// Extension modules: libraries that share the program's framework run-time and lend it their resources.
#pragma once

// Belongs to the module, as a static object; the framework fills it.
struct AFX_EXTENSION_MODULE {
    BOOL bInitialized;
    HMODULE hModule;
    HMODULE hResource;
    CRuntimeClass* pFirstSharedClass;
};

// Called from DllMain on process attach, before a CDynLinkLibrary is made. FALSE: the module must refuse to be loaded.
COMPAT_API BOOL AFXAPI AfxInitExtensionModule(AFX_EXTENSION_MODULE& state, HMODULE hModule);
// Called from DllMain on process detach. Deletes the module's CDynLinkLibrary objects; all modules' with bAll.
COMPAT_API void AFXAPI AfxTermExtensionModule(AFX_EXTENSION_MODULE& state, BOOL bAll = FALSE);

// One module in the list that resources are looked up in. Made with new; belongs to the framework, which deletes it in
// AfxTermExtensionModule.
class COMPAT_API CDynLinkLibrary : public CCmdTarget {
    DECLARE_DYNAMIC(CDynLinkLibrary)
public:
    explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& state, BOOL bSystem = FALSE);
    ~CDynLinkLibrary() override;

    HMODULE m_hModule;
    HMODULE m_hResource;
    BOOL m_bSystem;
    CDynLinkLibrary* m_pNextDLL; // the one registered before
};
