#include "SocketCalls.h"

#include <cstdio>
#include <cstring>
#include <utility>

#include "ReplacedCalls.h"

namespace {

const wchar_t LIBRARY[] = L"ws2_32.dll";

bool s_bFail = false;
std::vector<std::string> s_calls;
std::vector<SOCKET> s_sockets;
std::vector<SentDatagram> s_datagrams;

template <typename... Arguments>
void Record(const char* pszFormat, Arguments... arguments) {
    char text[100];
    std::snprintf(text, sizeof(text), pszFormat, arguments...);
    s_calls.emplace_back(text);
}

} // namespace

// What sendto counts bytes in.
#if defined(_WIN32)
using Size = int;
using Sent = int;
#else
using Size = size_t;
using Sent = ssize_t;
#endif

extern "C" SOCKET WINAPI WatchedSocket(int nFamily, int nType, int nProtocol) IN_PLACE_OF("socket");
extern "C" int WINAPI WatchedStartup(WORD nVersion, LPWSADATA pData) IN_PLACE_OF("WSAStartup");
extern "C" int WINAPI WatchedSetOption(SOCKET hSocket, int nLevel, int nOption, const char* pValue, int nSize)
    IN_PLACE_OF("setsockopt");
extern "C" Sent WINAPI WatchedSendTo(SOCKET hSocket, const char* pBytes, Size nBytes, int nFlags,
                                     const sockaddr* pAddress, int nAddressSize) IN_PLACE_OF("sendto");

SOCKET WINAPI WatchedSocket(int nFamily, int nType, int nProtocol) {
    static const auto s_pOriginal = Original<decltype(WatchedSocket)>(LIBRARY, "socket");
    Record("socket %d %d %d", nFamily, nType, nProtocol);
    const SOCKET hSocket = s_bFail ? INVALID_SOCKET : s_pOriginal(nFamily, nType, nProtocol);
    if (hSocket != INVALID_SOCKET) {
        s_sockets.push_back(hSocket);
    }
    return hSocket;
}

int WINAPI WatchedStartup(WORD nVersion, LPWSADATA pData) {
    static const auto s_pOriginal = Original<decltype(WatchedStartup)>(LIBRARY, "WSAStartup");
    Record("WSAStartup 0x%04X", nVersion);
    return s_pOriginal(nVersion, pData);
}

int WINAPI WatchedSetOption(SOCKET hSocket, int nLevel, int nOption, const char* pValue, int nSize) {
    static const auto s_pOriginal = Original<decltype(WatchedSetOption)>(LIBRARY, "setsockopt");
    int nValue = -1;
    if (nSize == static_cast<int>(sizeof(nValue))) {
        std::memcpy(&nValue, pValue, sizeof(nValue));
    }
    Record("setsockopt 0x%X 0x%X %d", nLevel == SOL_SOCKET ? 0xFFFF : nLevel, nOption == SO_BROADCAST ? 0x20 : nOption,
           nValue);
    return s_pOriginal(hSocket, nLevel, nOption, pValue, nSize);
}

Sent WINAPI WatchedSendTo(SOCKET hSocket, const char* pBytes, Size nBytes, int nFlags, const sockaddr* pAddress,
                          int nAddressSize) {
    SentDatagram datagram{};
    datagram.hSocket = hSocket;
    datagram.bNowhere = pBytes == nullptr;
    datagram.nSize = static_cast<size_t>(nBytes);
    if (!datagram.bNowhere) {
        datagram.bytes.assign(pBytes, datagram.nSize);
    }
    datagram.nFlags = nFlags;
    datagram.nAddressSize = nAddressSize;
    std::memcpy(&datagram.address, pAddress, sizeof(datagram.address));
    s_datagrams.push_back(std::move(datagram));
    return static_cast<Sent>(nBytes);
}

void WatchSocketCalls(HMODULE hModule) {
    WSADATA data;
    WSAStartup(0x0202, &data); // the host's part
    ReplaceImport(hModule, LIBRARY, "socket", WatchedSocket);
    ReplaceImport(hModule, LIBRARY, "WSAStartup", WatchedStartup);
    ReplaceImport(hModule, LIBRARY, "setsockopt", WatchedSetOption);
    ReplaceImport(hModule, LIBRARY, "sendto", WatchedSendTo);
}

void FailSockets(bool bFail) {
    s_bFail = bFail;
}

std::vector<std::string> TakeSocketCalls() {
    for (const SOCKET hSocket : std::exchange(s_sockets, {})) {
        closesocket(hSocket);
    }
    return std::exchange(s_calls, {});
}

std::vector<SentDatagram> TakeDatagrams() {
    return std::exchange(s_datagrams, {});
}
