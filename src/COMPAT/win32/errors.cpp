#include <windows.h>

namespace {

thread_local DWORD t_nLastError = 0;

} // namespace

DWORD WINAPI GetLastError() {
    return t_nLastError;
}

void WINAPI SetLastError(DWORD nError) {
    t_nLastError = nError;
}
