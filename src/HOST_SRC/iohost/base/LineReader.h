// Reads lines of bounded length.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

/// Longest line of requests and recordings; longer ones are refused and read past.
inline constexpr std::size_t LONGEST_LINE = std::size_t{64} << 20;

enum class ELine {
    Complete,
    TooLong, ///< it's read past, not kept
    None,    ///< the input has ended
    Failed,  ///< the input can't be read
};

/// Read up to the next line feed or the end of the input.
ELine ReadLine(std::istream& input, std::string& strLine, std::size_t nLongest = LONGEST_LINE);
