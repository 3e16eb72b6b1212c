#include "Platform.h"

#include <fcntl.h>
#include <io.h>
#include <stdio.h>

bool FreezeClock(std::optional<std::uint64_t> /*nMilliseconds*/) {
    return false;
}

std::string LoadErrorDetail() {
    return {};
}

void PrepareStandardStreams() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
}
