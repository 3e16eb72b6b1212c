// Reads lines of bounded length.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>

/// Longest line of requests and recordings; longer ones are refused and read past.
inline constexpr std::size_t LONGEST_LINE = std::size_t{64} << 20;

enum class ELine { Complete, TooLong, None };

/// Read up to the next line feed or the end of the input. What is too long is read past, not kept.
ELine ReadLine(std::istream& input, std::string& strLine, std::size_t nLongest = LONGEST_LINE);
