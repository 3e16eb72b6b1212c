#include "engine/LogLines.h"

#include <algorithm>

#include "base/Clock.h"

namespace {

size_t LengthOf(const SKeptLine& kept) {
    return static_cast<size_t>(kept.line.strText.GetLength());
}

} // namespace

void CLogLines::Add(const SLogged& line) {
    m_lines.push_back({++m_nLast, TimeOfDayMs(), line});
    m_nCharacters += LengthOf(m_lines.back());
    while (m_lines.size() > MOST_LINES || (m_nCharacters > MOST_CHARACTERS && m_lines.size() > 1)) {
        m_nCharacters -= LengthOf(m_lines.front());
        m_lines.pop_front();
    }
}

std::vector<SKeptLine> CLogLines::Behind(unsigned long long nNumber) const {
    const unsigned long long nGone = m_nLast - m_lines.size();
    const unsigned long long nSkipped = nNumber > nGone ? std::min(nNumber, m_nLast) - nGone : 0;
    return {m_lines.begin() + static_cast<std::ptrdiff_t>(nSkipped), m_lines.end()};
}
