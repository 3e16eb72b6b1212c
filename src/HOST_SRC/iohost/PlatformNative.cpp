#include "Platform.h"

#include <csignal>

#include <compat/testing.h>

bool FreezeClock(std::optional<std::uint64_t> nMilliseconds) {
    CompatFreezeTickCount(nMilliseconds);
    return true;
}

std::string LoadErrorDetail() {
    return CompatLoadErrorText();
}

void PrepareStandardStreams() {
    std::signal(SIGPIPE, SIG_IGN);
}
