// The front that takes one request a line and gives one reply a line.
#pragma once

#include <cstddef>
#include <iosfwd>

#include "base/LineReader.h"

class CSession;

/// Serve until the request `quit`, the end of the input or the loss of the output.
void RunStdio(CSession& session, std::istream& input, std::ostream& output, std::size_t nLongestLine = LONGEST_LINE);
