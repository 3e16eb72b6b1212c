// Where the system enters a library.

#include "startup.h"

#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID);

extern "C" BOOL WINAPI NoDllMain(HINSTANCE, DWORD, LPVOID) {
    return TRUE;
}
#pragma comment(linker, "/alternatename:DllMain=NoDllMain")

extern "C" BOOL WINAPI _DllMainCRTStartup(HINSTANCE hLibrary, DWORD nReason, LPVOID pReserved) {
    if (nReason == DLL_PROCESS_ATTACH && !MakeStatics())
        return FALSE;
    const BOOL bResult = DllMain(hLibrary, nReason, pReserved);
    if (nReason == DLL_PROCESS_DETACH || (nReason == DLL_PROCESS_ATTACH && !bResult))
        DestroyStatics();
    return bResult;
}
