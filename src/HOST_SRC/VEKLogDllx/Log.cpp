#include <cstdarg>

#include "LogSink.h"

namespace {

ILogSink* s_pSink = nullptr;

} // namespace

void SetLogSink(ILogSink* pSink) {
    s_pSink = pSink;
}

int NSVEKLog::WriteLog(EVEKLogLevel nLevel, int nSource, int nLogId, int nReserved, int nTarget,
                       const wchar_t* pszFormat, ...) {
    if (s_pSink == nullptr) {
        return 1;
    }
    SLogLine line{nLevel, {nSource, nLogId, nReserved, nTarget}, CString()};
    va_list arguments;
    va_start(arguments, pszFormat);
    line.strText.FormatV(pszFormat, arguments);
    va_end(arguments);
    s_pSink->OnLogLine(line);
    return 1;
}
