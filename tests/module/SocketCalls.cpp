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

SOCKET OpenSocket(decltype(&socket) pSocket, int nFamily, int nType, int nProtocol) {
    Record("socket %d %d %d", nFamily, nType, nProtocol);
    const SOCKET hSocket = s_bFail ? INVALID_SOCKET : pSocket(nFamily, nType, nProtocol);
    if (hSocket != INVALID_SOCKET) {
        s_sockets.push_back(hSocket);
    }
    return hSocket;
}

void RecordOption(int nLevel, int nOption, const void* pValue, int nSize) {
    int nValue = -1;
    if (nSize == static_cast<int>(sizeof(nValue))) {
        std::memcpy(&nValue, pValue, sizeof(nValue));
    }
    Record("setsockopt 0x%X 0x%X %d", nLevel == SOL_SOCKET ? 0xFFFF : nLevel, nOption == SO_BROADCAST ? 0x20 : nOption,
           nValue);
}

void RecordDatagram(SOCKET hSocket, const void* pBytes, size_t nBytes, int nFlags, const sockaddr* pAddress,
                    int nAddressSize) {
    SentDatagram datagram{};
    datagram.hSocket = hSocket;
    datagram.bNowhere = pBytes == nullptr;
    datagram.nSize = nBytes;
    if (!datagram.bNowhere) {
        datagram.bytes.assign(static_cast<const char*>(pBytes), nBytes);
    }
    datagram.nFlags = nFlags;
    datagram.nAddressSize = nAddressSize;
    std::memcpy(&datagram.address, pAddress, sizeof(datagram.address));
    s_datagrams.push_back(std::move(datagram));
}

} // namespace

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

#if defined(_WIN32)

// The module's imports of the functions are led here.

namespace {

SOCKET WSAAPI WatchedSocket(int nFamily, int nType, int nProtocol) {
    return OpenSocket(socket, nFamily, nType, nProtocol);
}

int WSAAPI WatchedStartup(WORD nVersion, LPWSADATA pData) {
    Record("WSAStartup 0x%04X", nVersion);
    return WSAStartup(nVersion, pData);
}

int WSAAPI WatchedSetOption(SOCKET hSocket, int nLevel, int nOption, const char* pValue, int nSize) {
    RecordOption(nLevel, nOption, pValue, nSize);
    return setsockopt(hSocket, nLevel, nOption, pValue, nSize);
}

int WSAAPI WatchedSendTo(SOCKET hSocket, const char* pBytes, int nBytes, int nFlags, const sockaddr* pAddress,
                         int nAddressSize) {
    RecordDatagram(hSocket, pBytes, static_cast<size_t>(nBytes), nFlags, pAddress, nAddressSize);
    return nBytes;
}

} // namespace

void WatchSocketCalls(HMODULE hModule) {
    WSADATA data;
    WSAStartup(0x0202, &data); // the host's part
    ReplaceImport(hModule, LIBRARY, "socket", WatchedSocket);
    ReplaceImport(hModule, LIBRARY, "WSAStartup", WatchedStartup);
    ReplaceImport(hModule, LIBRARY, "setsockopt", WatchedSetOption);
    ReplaceImport(hModule, LIBRARY, "sendto", WatchedSendTo);
}

#else

// The program's own definitions come before those of its libraries, for every caller.

void WatchSocketCalls(HMODULE /*hModule*/) {}

// Hidden ones would be the program's alone.
#pragma GCC visibility push(default)

extern "C" {

int socket(int nFamily, int nType, int nProtocol) noexcept {
    static const auto s_pSocket = Original<int(int, int, int) noexcept>(LIBRARY, "socket");
    return OpenSocket(s_pSocket, nFamily, nType, nProtocol);
}

int WINAPI WSAStartup(WORD nVersion, LPWSADATA pData) {
    static const auto s_pStartup = Original<decltype(WSAStartup)>(LIBRARY, "WSAStartup");
    Record("WSAStartup 0x%04X", nVersion);
    return s_pStartup(nVersion, pData);
}

int setsockopt(int hSocket, int nLevel, int nOption, const void* pValue, socklen_t nSize) noexcept {
    static const auto s_pSetOption =
        Original<int(int, int, int, const void*, socklen_t) noexcept>(LIBRARY, "setsockopt");
    RecordOption(nLevel, nOption, pValue, static_cast<int>(nSize));
    return s_pSetOption(hSocket, nLevel, nOption, pValue, nSize);
}

ssize_t sendto(int hSocket, const void* pBytes, size_t nBytes, int nFlags, const sockaddr* pAddress,
               socklen_t nAddressSize) {
    RecordDatagram(hSocket, pBytes, nBytes, nFlags, pAddress, static_cast<int>(nAddressSize));
    return static_cast<ssize_t>(nBytes);
}
}

#pragma GCC visibility pop

#endif
