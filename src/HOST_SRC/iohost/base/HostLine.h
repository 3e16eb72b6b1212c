// The host's own lines in its log.
#pragma once

#include <string>

#include "HostSetup.h"
#include "host/HostLog.h"

/// Write a line of the host's own.
inline void WriteHostLine(EVEKLogLevel nLevel, const std::string& strText) {
    const CString strLine = FromUtf8(strText);
    NSVEKLog::WriteLog(nLevel, 0, 0, 0, 0, L"%s", strLine.GetString());
}
