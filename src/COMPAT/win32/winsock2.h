// Windows Sockets names over the system's own sockets. The socket functions, address structures and option values are
// the native ones; only what Windows adds is declared here.
#pragma once

#include <windows.h>

#include <arpa/inet.h>
#include <cerrno>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

typedef int SOCKET;
#define INVALID_SOCKET (-1)
#define SOCKET_ERROR (-1)

#define SD_RECEIVE SHUT_RD
#define SD_SEND SHUT_WR
#define SD_BOTH SHUT_RDWR

typedef struct sockaddr SOCKADDR, *PSOCKADDR, *LPSOCKADDR;
typedef struct sockaddr_in SOCKADDR_IN, *PSOCKADDR_IN, *LPSOCKADDR_IN;
typedef struct in_addr IN_ADDR, *PIN_ADDR;

#define WSADESCRIPTION_LEN 256
#define WSASYS_STATUS_LEN 128

struct WSAData {
    WORD wVersion;
    WORD wHighVersion;
    unsigned short iMaxSockets;
    unsigned short iMaxUdpDg;
    char* lpVendorInfo;
    char szDescription[WSADESCRIPTION_LEN + 1];
    char szSystemStatus[WSASYS_STATUS_LEN + 1];
};
typedef WSAData WSADATA, *LPWSADATA;

// Error codes are the system's own under their Windows names.
#define WSAEINTR EINTR
#define WSAEBADF EBADF
#define WSAEACCES EACCES
#define WSAEFAULT EFAULT
#define WSAEINVAL EINVAL
#define WSAEMFILE EMFILE
#define WSAEWOULDBLOCK EWOULDBLOCK
#define WSAEINPROGRESS EINPROGRESS
#define WSAEALREADY EALREADY
#define WSAENOTSOCK ENOTSOCK
#define WSAEMSGSIZE EMSGSIZE
#define WSAEADDRINUSE EADDRINUSE
#define WSAEADDRNOTAVAIL EADDRNOTAVAIL
#define WSAENETUNREACH ENETUNREACH
#define WSAECONNABORTED ECONNABORTED
#define WSAECONNRESET ECONNRESET
#define WSAENOBUFS ENOBUFS
#define WSAENOTCONN ENOTCONN
#define WSAETIMEDOUT ETIMEDOUT
#define WSAECONNREFUSED ECONNREFUSED
#define WSAEHOSTUNREACH EHOSTUNREACH
#define WSAVERNOTSUPPORTED 10092
#define WSANOTINITIALISED 10093

extern "C" {
// Counts one more user. Versions 1.0 to 2.2 are served; 0 on success, otherwise an error code (not through
// WSAGetLastError).
COMPAT_API int WINAPI WSAStartup(WORD nVersionRequested, LPWSADATA pData);
// Takes back one WSAStartup; SOCKET_ERROR with WSANOTINITIALISED when there is none. Open sockets stay open.
COMPAT_API int WINAPI WSACleanup();
// Error of the calling thread's last failing socket call.
COMPAT_API int WINAPI WSAGetLastError();
COMPAT_API void WINAPI WSASetLastError(int nError);
COMPAT_API int WINAPI closesocket(SOCKET hSocket);
// FIONBIO only: *pnArgument non-zero makes the socket non-blocking.
COMPAT_API int WINAPI ioctlsocket(SOCKET hSocket, long nCommand, unsigned long* pnArgument);
}
