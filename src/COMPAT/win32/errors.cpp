// Last error, process and thread numbers, debugger output.

#include "text.h"

#include <cstdio>
#include <unistd.h>

namespace {

thread_local DWORD t_nLastError = ERROR_SUCCESS;

} // namespace

DWORD WINAPI GetLastError() {
    return t_nLastError;
}

void WINAPI SetLastError(DWORD nError) {
    t_nLastError = nError;
}

DWORD WINAPI GetCurrentThreadId() {
    return static_cast<DWORD>(gettid());
}

DWORD WINAPI GetCurrentProcessId() {
    return static_cast<DWORD>(getpid());
}

void WINAPI OutputDebugStringW(LPCWSTR pszText) {
    std::fputs(WideToUtf8(pszText).c_str(), stderr);
}
