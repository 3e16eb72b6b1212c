#include "SystemCalls.h"

#include <utility>

#include "ReplacedCalls.h"

namespace {

std::vector<ImageCall> s_imageCalls;
std::optional<DWORD> s_nStoppedTick;
bool s_bConversionsFail = false;

} // namespace

extern "C" HANDLE WINAPI WatchedLoadImage(HINSTANCE hInstance, LPCWSTR pszName, UINT nType, int nWidth, int nHeight,
                                          UINT nFlags) IN_PLACE_OF("LoadImageW");
extern "C" int WINAPI FailableConversion(UINT nCodePage, DWORD nFlags, LPCWSTR pchText, int nLength, LPSTR pBytes,
                                         int nBytes, LPCSTR pszDefault, LPBOOL pbUsedDefault)
    IN_PLACE_OF("WideCharToMultiByte");
extern "C" DWORD WINAPI StoppableTickCount() IN_PLACE_OF("GetTickCount");

HANDLE WINAPI WatchedLoadImage(HINSTANCE hInstance, LPCWSTR pszName, UINT nType, int nWidth, int nHeight, UINT nFlags) {
    static const auto s_pOriginal = Original<decltype(LoadImageW)>(L"user32.dll", "LoadImageW");
    // Recorded first: should there be no memory for it, no image is lost.
    s_imageCalls.push_back({hInstance, reinterpret_cast<ULONG_PTR>(pszName), nType, nWidth, nHeight, nFlags, nullptr});
    return s_imageCalls.back().hResult = s_pOriginal(hInstance, pszName, nType, nWidth, nHeight, nFlags);
}

int WINAPI FailableConversion(UINT nCodePage, DWORD nFlags, LPCWSTR pchText, int nLength, LPSTR pBytes, int nBytes,
                              LPCSTR pszDefault, LPBOOL pbUsedDefault) {
    static const auto s_pOriginal = Original<decltype(WideCharToMultiByte)>(L"kernel32.dll", "WideCharToMultiByte");
    return s_bConversionsFail
               ? 0
               : s_pOriginal(nCodePage, nFlags, pchText, nLength, pBytes, nBytes, pszDefault, pbUsedDefault);
}

DWORD WINAPI StoppableTickCount() {
    static const auto s_pOriginal = Original<decltype(GetTickCount)>(L"kernel32.dll", "GetTickCount");
    return s_nStoppedTick ? *s_nStoppedTick : s_pOriginal();
}

void WatchSystemCalls(HMODULE hModule) {
    ReplaceImport(hModule, L"user32.dll", "LoadImageW", WatchedLoadImage);
    ReplaceImport(hModule, L"kernel32.dll", "WideCharToMultiByte", FailableConversion);
    ReplaceImport(hModule, L"kernel32.dll", "GetTickCount", StoppableTickCount);
}

std::vector<ImageCall> TakeImageCalls() {
    return std::exchange(s_imageCalls, {});
}

void FailConversions(bool bFail) {
    s_bConversionsFail = bFail;
}

void StopTickCount(std::optional<DWORD> nTick) {
    s_nStoppedTick = nTick;
}

#if !defined(_WIN32)

namespace {

std::vector<std::wstring> s_registeredMessages;

} // namespace

extern "C" UINT WINAPI RegisterWindowMessageW(LPCWSTR pszName) {
    static const auto s_pOriginal = Original<decltype(RegisterWindowMessageW)>(L"user32.dll", "RegisterWindowMessageW");
    s_registeredMessages.emplace_back(pszName);
    return s_pOriginal(pszName);
}

std::vector<std::wstring> TakeRegisteredMessages() {
    return std::exchange(s_registeredMessages, {});
}

#endif
