// The front that takes one request a line and gives one reply a line.
#pragma once

#include <cstddef>
#include <iosfwd>

class CSession;

/// Longest request line; longer ones are refused and read past.
inline constexpr std::size_t LONGEST_LINE = std::size_t{64} << 20;

/// Serve until the request `quit`, the end of the input or the loss of the output.
void RunStdio(CSession& session, std::istream& input, std::ostream& output, std::size_t nLongestLine = LONGEST_LINE);
