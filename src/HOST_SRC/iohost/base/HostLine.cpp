#include "base/HostLine.h"

#include <utility>

void WriteHostLine(EVEKLogLevel nLevel, const std::string& strText) {
    const CString strLine = FromUtf8(strText);
    NSVEKLog::WriteLog(nLevel, 0, 0, 0, 0, L"%s", strLine.GetString());
}

void CLimitedLine::Write(const std::string& strText) {
    constexpr std::chrono::seconds PAUSE{10};

    const auto tNow = std::chrono::steady_clock::now();
    if (m_tWritten && tNow - *m_tWritten < PAUSE) {
        ++m_nLeftOut;
        return;
    }
    m_tWritten = tNow;
    const auto nLeftOut = std::exchange(m_nLeftOut, 0);
    WriteHostLine(m_nLevel, nLeftOut == 0
                                ? strText
                                : strText + " (and " + std::to_string(nLeftOut) + " times since the last line)");
}
