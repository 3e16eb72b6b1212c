#include "base/LineReader.h"

#include <istream>

ELine ReadLine(std::istream& input, std::string& strLine, std::size_t nLongest) try {
    strLine.clear();
    std::streambuf& buffer = *input.rdbuf();
    std::size_t nLength = 0;
    int c = buffer.sbumpc();
    if (c == std::char_traits<char>::eof()) {
        return ELine::None;
    }
    for (; c != std::char_traits<char>::eof() && c != '\n'; c = buffer.sbumpc()) {
        if (nLength++ < nLongest) {
            strLine.push_back(static_cast<char>(c));
        }
    }
    return nLength > nLongest ? ELine::TooLong : ELine::Complete;
} catch (const std::ios_base::failure&) {
    return ELine::Failed;
}
