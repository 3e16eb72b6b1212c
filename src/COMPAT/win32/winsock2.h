// Windows Sockets names over the system's own sockets. The socket functions, address structures and option values are
// the native ones; only what Windows adds is declared here.
#pragma once

#include <windows.h>

#include <netinet/in.h>
#include <sys/socket.h>

typedef int SOCKET;
#define INVALID_SOCKET (-1)

struct WSADATA {
    WORD wVersion;
    WORD wHighVersion;
};
typedef WSADATA* LPWSADATA;

extern "C" {
// Sockets need no starting here: answers 0, for success, and the version asked for, which should be 2.2 at most.
COMPAT_API int WINAPI WSAStartup(WORD nVersionRequested, LPWSADATA pData);
COMPAT_API int WINAPI closesocket(SOCKET hSocket);
}
