// The host's log library VEKLogDllx.
#pragma once

#include <afxwin.h>

#include "host/Export.h"

enum EVEKLogLevel : int {
    LOG_INFORMATION = 4, ///< an event fired
    LOG_ERROR = 32,      ///< bad or missing input
};

namespace NSVEKLog {

/// Write one formatted log line; returns 1. The four integers go to the log as they are. In the format, %s takes a
/// wide string on every platform.
VEKLOG_API int WriteLog(EVEKLogLevel nLevel, int nSource, int nLogId, int nReserved, int nTarget,
                        const wchar_t* pszFormat, ...);

} // namespace NSVEKLog
