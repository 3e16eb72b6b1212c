#include "Platform.h"

#include <winsock2.h>

#include <mstcpip.h>

#include <fcntl.h>
#include <io.h>
#include <stdio.h>

bool FreezeClock(std::optional<std::uint64_t> /*nMilliseconds*/) {
    return false;
}

void NoticeLostPeer(std::uintptr_t hSocket) {
    tcp_keepalive settings = {1, 5'000, 1'000}; // on; milliseconds of silence, and between questions
    DWORD nReturned = 0;
    WSAIoctl(static_cast<SOCKET>(hSocket), SIO_KEEPALIVE_VALS, &settings, sizeof(settings), nullptr, 0, &nReturned,
             nullptr, nullptr);
}

bool HasStoppedAnswering(std::uintptr_t /*hSocket*/, std::chrono::milliseconds /*patience*/) {
    return false;
}

std::string LoadErrorDetail() {
    return {};
}

void PrepareStandardStreams() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
}
