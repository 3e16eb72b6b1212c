#include <winsock2.h>

#include <atomic>
#include <unistd.h>

namespace {

std::atomic<int> g_nSocketUsers = 0;

} // namespace

int WINAPI WSAStartup(WORD nVersionRequested, LPWSADATA pData) {
    if (pData == nullptr)
        return WSAEFAULT;
    if (LOBYTE(nVersionRequested) == 0)
        return WSAVERNOTSUPPORTED;
    *pData = WSADATA{};
    pData->wHighVersion = MAKEWORD(2, 2);
    const bool bOlder =
        LOBYTE(nVersionRequested) < 2 || (LOBYTE(nVersionRequested) == 2 && HIBYTE(nVersionRequested) < 2);
    pData->wVersion = bOlder ? nVersionRequested : pData->wHighVersion;
    g_nSocketUsers++;
    return 0;
}

int WINAPI WSACleanup() {
    int nUsers = g_nSocketUsers;
    do {
        if (nUsers == 0) {
            WSASetLastError(WSANOTINITIALISED);
            return SOCKET_ERROR;
        }
    } while (!g_nSocketUsers.compare_exchange_weak(nUsers, nUsers - 1));
    return 0;
}

int WINAPI WSAGetLastError() {
    return errno;
}

void WINAPI WSASetLastError(int nError) {
    errno = nError;
}

int WINAPI closesocket(SOCKET hSocket) {
    return close(hSocket);
}

int WINAPI ioctlsocket(SOCKET hSocket, long nCommand, unsigned long* pnArgument) {
    if (nCommand != FIONBIO || pnArgument == nullptr) {
        WSASetLastError(WSAEINVAL);
        return SOCKET_ERROR;
    }
    int nNonBlocking = *pnArgument != 0;
    return ioctl(hSocket, FIONBIO, &nNonBlocking);
}
