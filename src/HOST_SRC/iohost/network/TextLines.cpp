#include "network/TextLines.h"

#include <algorithm>
#include <numeric>
#include <string_view>

#include "base/TextUtf8.h"

void CTextLines::OnBytes(std::span<const unsigned char> bytes) {
    while (!bytes.empty()) {
        // A line feed is never part of another character, wherever characters are split.
        const auto end = std::ranges::find(bytes, '\n');
        const auto nLength = static_cast<size_t>(end - bytes.begin());
        Append(bytes.first(nLength));
        if (end == bytes.end()) {
            return;
        }
        Deliver();
        bytes = bytes.subspan(nLength + 1);
    }
}

void CTextLines::OnConnectionEnds() {
    if (m_bTooLong || !m_strLine.empty()) {
        Refuse(m_bTooLong ? ELineRefusal::TooLong : ELineRefusal::CutOff);
    }
    BeginLine();
}

unsigned long long CTextLines::RefusedCount() const {
    return std::accumulate(m_nRefused.begin(), m_nRefused.end(), 0ULL);
}

void CTextLines::Append(std::span<const unsigned char> bytes) {
    // One byte more is kept for a carriage return, which may turn out to belong to the line's end.
    if (m_bTooLong || bytes.size() > LONGEST_TEXT_LINE + 1 - m_strLine.size()) {
        m_bTooLong = true;
        std::string().swap(m_strLine); // with its memory
        return;
    }
    m_strLine.append(bytes.begin(), bytes.end());
}

void CTextLines::Deliver() {
    std::string_view line = m_strLine;
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    if (m_bTooLong || line.size() > LONGEST_TEXT_LINE) {
        Refuse(ELineRefusal::TooLong);
    } else if (line.empty()) {
        Refuse(ELineRefusal::Empty);
    } else if (const auto text = WellFormedText(line)) {
        m_onText(*text);
    } else {
        Refuse(ELineRefusal::NotUtf8);
    }
    BeginLine();
}

void CTextLines::BeginLine() {
    m_strLine.clear();
    m_bTooLong = false;
}

void CTextLines::Refuse(ELineRefusal nRefusal) {
    ++m_nRefused[static_cast<size_t>(nRefusal)];
    m_lastRefusal = nRefusal;
}
