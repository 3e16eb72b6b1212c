// The host's log library VEKLogDllx.
#pragma once

#include <afxwin.h>

#include "host/Codes.h"
#include "host/Export.h"

enum EVEKLogLevel : int { LOG_INFORMATION = LEVEL_INFORMATION, LOG_ERROR = LEVEL_ERROR };

namespace NSVEKLog {

/// Write one formatted log line; returns 1. The four integers go to the log as they are. In the format, %s takes a
/// wide string on every platform.
VEKLOG_API int WriteLog(EVEKLogLevel nLevel, int nSource, int nLogId, int nReserved, int nTarget,
                        const wchar_t* pszFormat, ...);

} // namespace NSVEKLog
