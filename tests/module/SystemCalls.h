// Sees the system calls by which the module reaches for what cannot be read back: icon resources and message names.
// Stops the tick count that it reads, and lets its conversions of text fail.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <afxwin.h>

struct ImageCall {
    HINSTANCE hInstance;
    ULONG_PTR nName; ///< a resource id
    UINT nType;
    int nWidth;
    int nHeight;
    UINT nFlags;
    HANDLE hResult;
};

/// Start watching a module that has just been loaded.
void WatchSystemCalls(HMODULE hModule);

/// The tick count that the module reads stands still at this value; it runs again for nullopt.
void StopTickCount(std::optional<DWORD> nTick);

/// The calls of LoadImageW since the last question.
std::vector<ImageCall> TakeImageCalls();

/// Let WideCharToMultiByte yield nothing, or not. Natively that's the same function for everybody.
void FailConversions(bool bFail);

#if !defined(_WIN32)
/// The names given to RegisterWindowMessageW since the last question. Only here: on Windows they are registered before
/// the module can be watched.
std::vector<std::wstring> TakeRegisteredMessages();
#endif
