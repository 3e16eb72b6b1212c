#pragma once

#include "vek/Api.h"

enum EVEKLogLevel { eLogInfo = 4, eLogError = 32 };

namespace NSVEKLog {
VEK_API int WriteLog(EVEKLogLevel eLevel, int nModule, int nLine, int nUser, int nTarget, LPCTSTR pszFormat, ...);
} // namespace NSVEKLog
