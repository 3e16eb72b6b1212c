// Sees the module's calls of Windows Sockets, and keeps its datagrams from the network.
#pragma once

#include <string>
#include <vector>

#include <afxwin.h>
#include <winsock2.h>

/// A call of sendto.
struct SentDatagram {
    SOCKET hSocket;
    std::string bytes; ///< none when they weren't anywhere
    bool bNowhere;     ///< a null buffer was given
    size_t nSize;
    int nFlags;
    sockaddr_in address;
    int nAddressSize;
};

/// Start watching a module that has just been loaded.
void WatchSocketCalls(HMODULE hModule);

/// Let the module's calls of socket fail, or not.
void FailSockets(bool bFail);

/// The calls that open sockets since the last question: "socket 2 2 0", "WSAStartup 0x0202",
/// "setsockopt 0xFFFF 0x20 1" (level, option, value by their Windows numbers). Closes the sockets.
std::vector<std::string> TakeSocketCalls();

/// The datagrams since the last question. None of them went out.
std::vector<SentDatagram> TakeDatagrams();
