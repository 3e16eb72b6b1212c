// The last lines of the log, for whoever asks later.
#pragma once

#include <deque>
#include <vector>

#include "engine/Activity.h"

struct SKeptLine {
    unsigned long long nNumber;
    long long nTimeMs; ///< since 1970
    SLogged line;
};

class CLogLines {
public:
    static constexpr size_t MOST_LINES = 10'000;
    static constexpr size_t MOST_CHARACTERS = size_t{1} << 20; ///< of all lines together, unless one has more

    /// A line was written just now.
    void Add(const SLogged& line);

    /// The lines behind the one of that number; lines are numbered from 1 on.
    std::vector<SKeptLine> Behind(unsigned long long nNumber) const;

private:
    std::deque<SKeptLine> m_lines;
    unsigned long long m_nLast = 0;
    size_t m_nCharacters = 0;
};
