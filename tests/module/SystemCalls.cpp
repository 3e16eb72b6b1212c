#include "SystemCalls.h"

#include <utility>

namespace {

std::vector<ImageCall> s_imageCalls;

using LoadImageType = decltype(&LoadImageW);

HANDLE LoadImageAndRecord(LoadImageType pLoadImage, HINSTANCE hInstance, LPCWSTR pszName, UINT nType, int nWidth,
                          int nHeight, UINT nFlags) {
    // Recorded first: should there be no memory for it, no image is lost.
    s_imageCalls.push_back({hInstance, reinterpret_cast<ULONG_PTR>(pszName), nType, nWidth, nHeight, nFlags, nullptr});
    return s_imageCalls.back().hResult = pLoadImage(hInstance, pszName, nType, nWidth, nHeight, nFlags);
}

} // namespace

std::vector<ImageCall> TakeImageCalls() {
    return std::exchange(s_imageCalls, {});
}

#if defined(_WIN32)

// The module's imports of the functions are led here.

namespace {

std::optional<DWORD> s_nStoppedTick;

DWORD WINAPI StoppableTickCount() {
    return s_nStoppedTick ? *s_nStoppedTick : GetTickCount();
}

HANDLE WINAPI WatchedLoadImage(HINSTANCE hInstance, LPCWSTR pszName, UINT nType, int nWidth, int nHeight, UINT nFlags) {
    return LoadImageAndRecord(LoadImageW, hInstance, pszName, nType, nWidth, nHeight, nFlags);
}

template <typename T>
T* At(HMODULE hModule, DWORD nOffset) {
    return reinterpret_cast<T*>(reinterpret_cast<BYTE*>(hModule) + nOffset);
}

ULONG_PTR Exported(const wchar_t* pszLibrary, const char* pszName) {
    return reinterpret_cast<ULONG_PTR>(GetProcAddress(GetModuleHandleW(pszLibrary), pszName));
}

} // namespace

void WatchSystemCalls(HMODULE hModule) {
    const auto* pHeader = At<IMAGE_NT_HEADERS>(hModule, static_cast<DWORD>(At<IMAGE_DOS_HEADER>(hModule, 0)->e_lfanew));
    const DWORD nImports = pHeader->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    const std::pair<ULONG_PTR, ULONG_PTR> replacements[] = {
        {Exported(L"user32.dll", "LoadImageW"), reinterpret_cast<ULONG_PTR>(&WatchedLoadImage)},
        {Exported(L"kernel32.dll", "GetTickCount"), reinterpret_cast<ULONG_PTR>(&StoppableTickCount)}};
    for (auto* pImport = At<IMAGE_IMPORT_DESCRIPTOR>(hModule, nImports); pImport->Name != 0; ++pImport) {
        for (auto* pAddress = At<ULONG_PTR>(hModule, pImport->FirstThunk); *pAddress != 0; ++pAddress) {
            for (const auto& [nOriginal, nReplacement] : replacements) {
                if (*pAddress == nOriginal) {
                    DWORD nProtection;
                    VirtualProtect(pAddress, sizeof *pAddress, PAGE_READWRITE, &nProtection);
                    *pAddress = nReplacement;
                    VirtualProtect(pAddress, sizeof *pAddress, nProtection, &nProtection);
                    break;
                }
            }
        }
    }
}

void StopTickCount(std::optional<DWORD> nTick) {
    s_nStoppedTick = nTick;
}

#else

// The program's own definitions come before those of its libraries, for every caller.

#include <compat/testing.h>

#include <dlfcn.h>

namespace {

std::vector<std::wstring> s_registeredMessages;

template <typename Function>
Function* Next(const char* pszName) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, pszName));
}

} // namespace

void WatchSystemCalls(HMODULE /*hModule*/) {}

void StopTickCount(std::optional<DWORD> nTick) {
    CompatFreezeTickCount(nTick);
}

std::vector<std::wstring> TakeRegisteredMessages() {
    return std::exchange(s_registeredMessages, {});
}

extern "C" HANDLE WINAPI LoadImageW(HINSTANCE hInstance, LPCWSTR pszName, UINT nType, int nWidth, int nHeight,
                                    UINT nFlags) {
    static const auto s_pLoadImage = Next<decltype(LoadImageW)>("LoadImageW");
    return LoadImageAndRecord(s_pLoadImage, hInstance, pszName, nType, nWidth, nHeight, nFlags);
}

extern "C" UINT WINAPI RegisterWindowMessageW(LPCWSTR pszName) {
    static const auto s_pRegister = Next<decltype(RegisterWindowMessageW)>("RegisterWindowMessageW");
    s_registeredMessages.emplace_back(pszName);
    return s_pRegister(pszName);
}

#endif
