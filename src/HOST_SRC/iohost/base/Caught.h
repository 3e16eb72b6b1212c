// What goes wrong with one item or one connection ends there: it's logged, and the others go on.
#pragma once

#include <string>

#include "base/HostLine.h"

/// In a catch block: what was thrown, in words. An exception of the class library is deleted.
std::string CaughtText();

/// Do something; what it throws is logged. Returns whether it threw nothing.
template <typename Action>
bool DoGuarded(CLimitedLine& line, const char* pszWhat, Action action) {
    try {
        action();
        return true;
    } catch (...) {
        line.Write(std::string(pszWhat) + ": " + CaughtText());
        return false;
    }
}

/// Run the loop by that function until it returns by itself; what a handler throws is logged, and the loop goes on.
template <typename Run>
void RunLoop(Run run) {
    CLimitedLine line(LOG_ERROR);
    while (!DoGuarded(line, "a step of the host's loop failed", run)) {
    }
}
