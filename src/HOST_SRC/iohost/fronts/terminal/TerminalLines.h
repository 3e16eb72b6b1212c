// What the host prints while it serves the page or shows its window: a line for each log line and each fired event.
#pragma once

#include <boost/core/noncopyable.hpp>
#include <functional>
#include <string>

#include "session/Session.h"

class CTerminalLines final : private ISessionObserver, boost::noncopyable {
public:
    /// Prints whole lines of what happens in the session, which must outlive it.
    CTerminalLines(CSession& session, std::function<void(const std::string& strLines)> print);
    ~CTerminalLines();

    /// Prints the new values of outputs.
    void PrintOutputs(const OutputValues& changed);

private:
    void OnDone(const SDone& done) override;
    std::string OutputText(const std::string& strHandle, unsigned nOutput) const;

    CSession& m_session;
    const std::function<void(const std::string& strLines)> m_print;
};
