// What goes wrong with one item or one connection ends there: it's logged, and the others go on.
#pragma once

#include "base/Network.h"

#include <boost/asio/co_spawn.hpp>

#include <exception>
#include <string>
#include <utility>

#include "base/LimitedLine.h"

/// In a catch block: what was thrown, in words. An exception of the class library is deleted.
std::string CaughtText();

/// Do something; what it throws is logged. Whether it went well.
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

/// Start a coroutine on an executor or in a loop; what it throws is logged.
template <typename Place, typename Function>
void Spawn(Place&& place, const char* pszWhat, Function function) {
    boost::asio::co_spawn(std::forward<Place>(place), std::move(function), [pszWhat](std::exception_ptr pThrown) {
        if (pThrown != nullptr) {
            try {
                std::rethrow_exception(pThrown);
            } catch (...) {
                WriteHostLine(LOG_ERROR, std::string(pszWhat) + ": " + CaughtText());
            }
        }
    });
}
