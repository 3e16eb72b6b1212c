#include "base/Platform.h"

#include <cerrno>
#include <csignal>
#include <utility>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <compat/testing.h>

void FreezeClock(std::optional<std::uint64_t> nMilliseconds) {
    CompatFreezeTickCount(nMilliseconds);
}

void TakeDatagrams(std::function<void()> taker) {
    CompatTakeDatagrams(std::move(taker));
}

void SetModule(HMODULE /*hModule*/) {} // there is one clock and one sendto in the process

void AllowManySockets() {
    rlimit limit = {};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

void LetPortBeReused(std::uintptr_t hSocket) {
    const int nOn = 1;
    setsockopt(static_cast<int>(hSocket), SOL_SOCKET, SO_REUSEADDR, &nOn, sizeof(nOn));
}

void NoticeLostPeer(std::uintptr_t hSocket) {
    struct SOption {
        int nLevel;
        int nName;
        int nValue;
    };
    constexpr SOption OPTIONS[] = {
        {SOL_SOCKET, SO_KEEPALIVE, 1},
        {IPPROTO_TCP, TCP_KEEPIDLE, 5},  // seconds of silence before the first question
        {IPPROTO_TCP, TCP_KEEPINTVL, 1}, // seconds between questions
        {IPPROTO_TCP, TCP_KEEPCNT, 5},   // unanswered questions
    };
    for (const SOption& option : OPTIONS) {
        setsockopt(static_cast<int>(hSocket), option.nLevel, option.nName, &option.nValue, sizeof(option.nValue));
    }
}

// The system asks only while nothing waits to be sent, and its own time limit for sent bytes (TCP_USER_TIMEOUT) would
// also end the connection to a device that merely doesn't read for a while.
bool HasStoppedAnswering(std::uintptr_t hSocket, std::chrono::milliseconds patience) {
    constexpr int UNANSWERED = 2; // the answer to the first one may be on its way
    tcp_info info = {};
    socklen_t nSize = sizeof(info);
    return getsockopt(static_cast<int>(hSocket), IPPROTO_TCP, TCP_INFO, &info, &nSize) == 0 &&
           (info.tcpi_retransmits >= UNANSWERED || info.tcpi_probes >= UNANSWERED) &&
           std::chrono::milliseconds(info.tcpi_last_ack_recv) >= patience;
}

std::string LoadErrorDetail() {
    return CompatLoadErrorText();
}

void PrepareStandardStreams() {
    std::signal(SIGPIPE, SIG_IGN);
}

std::filesystem::path StandardInputFile() {
    return "/dev/stdin";
}

bool WriteStandard(int nStream, std::string_view text) {
    while (!text.empty()) {
        const ssize_t nWritten = write(nStream, text.data(), text.size());
        if (nWritten >= 0) {
            text.remove_prefix(static_cast<size_t>(nWritten));
        } else if (errno == EAGAIN) { // the descriptor is non-blocking: wait until it takes more
            pollfd ready{nStream, POLLOUT, 0};
            poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

const int TERMINAL_SIGNAL = SIGHUP;
