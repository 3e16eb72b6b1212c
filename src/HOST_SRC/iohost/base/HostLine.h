// The host's own lines in its log.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "HostSetup.h"
#include "host/HostLog.h"

/// Write a line of the host's own.
void WriteHostLine(EVEKLogLevel nLevel, const std::string& strText);

/// One that may come again and again, and mustn't fill the log.
class CLimitedLine {
public:
    explicit CLimitedLine(EVEKLogLevel nLevel) : m_nLevel(nLevel) {}

    /// Write the line, unless one was written within the last ten seconds; the next one says how many were left out.
    void Write(const std::string& strText);

private:
    EVEKLogLevel m_nLevel;
    std::optional<std::chrono::steady_clock::time_point> m_tWritten;
    unsigned long long m_nLeftOut = 0;
};
