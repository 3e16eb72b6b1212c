#include "ReplacedCalls.h"

#if defined(_WIN32)

namespace {

template <typename T>
T* At(HMODULE hModule, DWORD nOffset) {
    return reinterpret_cast<T*>(reinterpret_cast<BYTE*>(hModule) + nOffset);
}

} // namespace

void* FindOriginal(const wchar_t* pszLibrary, const char* pszSymbol) {
    return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(pszLibrary), pszSymbol));
}

void ReplaceImport(HMODULE hModule, const void* pOriginal, void* pReplacement) {
    const auto* pHeader = At<IMAGE_NT_HEADERS>(hModule, static_cast<DWORD>(At<IMAGE_DOS_HEADER>(hModule, 0)->e_lfanew));
    const DWORD nImports = pHeader->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    for (auto* pImport = At<IMAGE_IMPORT_DESCRIPTOR>(hModule, nImports); pImport->Name != 0; ++pImport) {
        for (auto* pAddress = At<void*>(hModule, pImport->FirstThunk); *pAddress != nullptr; ++pAddress) {
            if (*pAddress == pOriginal) {
                DWORD nProtection;
                VirtualProtect(pAddress, sizeof(*pAddress), PAGE_READWRITE, &nProtection);
                *pAddress = pReplacement;
                VirtualProtect(pAddress, sizeof(*pAddress), nProtection, &nProtection);
            }
        }
    }
}

#else

#include <dlfcn.h>

void* FindOriginal(const wchar_t* /*pszLibrary*/, const char* pszSymbol) {
    return dlsym(RTLD_NEXT, pszSymbol);
}

void ReplaceImport(HMODULE /*hModule*/, const void* /*pOriginal*/, void* /*pReplacement*/) {}

#endif
