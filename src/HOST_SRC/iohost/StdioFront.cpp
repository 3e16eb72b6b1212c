#include "StdioFront.h"

#include <istream>
#include <ostream>
#include <string>

#include "Session.h"

namespace {

enum class ELine { Complete, TooLong, None };

/// Read up to the next line feed; the last line may end with the input instead. What is too long is read past, not
/// kept.
ELine ReadLine(std::istream& input, std::string& strLine, std::size_t nLongest) {
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
}

} // namespace

void RunStdio(CSession& session, std::istream& input, std::ostream& output, std::size_t nLongestLine) {
    std::string strLine;
    while (output && !session.HasQuit()) {
        const ELine nLine = ReadLine(input, strLine, nLongestLine);
        if (nLine == ELine::None) {
            break;
        }
        output << (nLine == ELine::Complete
                       ? session.HandleText(strLine)
                       : ReplyText(ErrorReply("request: longer than " + std::to_string(nLongestLine) + " bytes")))
               << '\n'
               << std::flush;
    }
}
