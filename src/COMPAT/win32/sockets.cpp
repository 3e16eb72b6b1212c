#include <winsock2.h>

#include <compat/testing.h>

#include <utility>

#include <dlfcn.h>
#include <unistd.h>

namespace {

std::function<void()> s_datagramTaker;

} // namespace

void CompatTakeDatagrams(std::function<void()> taker) {
    s_datagramTaker = std::move(taker);
}

// The library that holds this is searched before the system's, so everybody in the process calls this one.
extern "C" COMPAT_API ssize_t sendto(int hSocket, const void* pBytes, size_t nBytes, int nFlags,
                                     const sockaddr* pAddress, socklen_t nAddressSize) {
    if (s_datagramTaker) {
        s_datagramTaker();
        return static_cast<ssize_t>(nBytes);
    }
    static const auto s_pSendTo = reinterpret_cast<decltype(&sendto)>(dlsym(RTLD_NEXT, "sendto"));
    return s_pSendTo(hSocket, pBytes, nBytes, nFlags, pAddress, nAddressSize);
}

int WINAPI WSAStartup(WORD nVersionRequested, LPWSADATA pData) {
    *pData = {nVersionRequested, 0x0202};
    return 0;
}

int WINAPI closesocket(SOCKET hSocket) {
    return close(hSocket);
}
