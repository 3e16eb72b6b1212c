// A module that refuses to be loaded.
#include <afxwin.h>

extern "C" int APIENTRY DllMain(HINSTANCE /*hInstance*/, DWORD /*dwReason*/, LPVOID /*pReserved*/) {
    return 0;
}

extern "C" __declspec(dllexport) int WINAPI
    IOProcessFunc(unsigned /*nOperation*/, void* /*pArgument*/, void* /*pData*/) {
    return 0;
}
