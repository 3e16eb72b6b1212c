#include "Platform.h"

#include <csignal>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <compat/testing.h>

bool FreezeClock(std::optional<std::uint64_t> nMilliseconds) {
    CompatFreezeTickCount(nMilliseconds);
    return true;
}

void NoticeLostPeer(std::uintptr_t hSocket) {
    struct SOption {
        int nLevel;
        int nName;
        int nValue;
    };
    constexpr SOption OPTIONS[] = {
        {SOL_SOCKET, SO_KEEPALIVE, 1},
        {IPPROTO_TCP, TCP_KEEPIDLE, 5},          // seconds of silence before the first question
        {IPPROTO_TCP, TCP_KEEPINTVL, 1},         // seconds between questions
        {IPPROTO_TCP, TCP_KEEPCNT, 5},           // unanswered questions
        {IPPROTO_TCP, TCP_USER_TIMEOUT, 10'000}, // milliseconds that sent bytes may stay unanswered
    };
    for (const SOption& option : OPTIONS) {
        setsockopt(static_cast<int>(hSocket), option.nLevel, option.nName, &option.nValue, sizeof(option.nValue));
    }
}

std::string LoadErrorDetail() {
    return CompatLoadErrorText();
}

void PrepareStandardStreams() {
    std::signal(SIGPIPE, SIG_IGN);
}
