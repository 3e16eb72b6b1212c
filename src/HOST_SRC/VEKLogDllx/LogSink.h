// Where the host's log lines go.
#pragma once

#include "host/HostLog.h"

/// One log line.
struct SLogLine {
    EVEKLogLevel nLevel;
    int nArguments[4]; ///< the four integers given to WriteLog, in order
    CString strText;   ///< the formatted text
};

/// Receives every log line, on the thread that writes it. The line lives for the call.
class ILogSink {
public:
    virtual void OnLogLine(const SLogLine& line) = 0;

protected:
    ~ILogSink() = default;
};

/// Set the receiver; null drops the lines. It isn't owned and must outlive its registration.
VEKLOG_API void SetLogSink(ILogSink* pSink);
