#include <winsock2.h>

#include <unistd.h>

int WINAPI WSAStartup(WORD nVersionRequested, LPWSADATA pData) {
    *pData = {nVersionRequested, 0x0202};
    return 0;
}

int WINAPI closesocket(SOCKET hSocket) {
    return close(hSocket);
}
