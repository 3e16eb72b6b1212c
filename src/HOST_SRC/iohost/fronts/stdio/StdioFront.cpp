#include "fronts/stdio/StdioFront.h"

#include <istream>
#include <ostream>
#include <string>

#include "protocol/SceneFile.h"

void RunStdio(CSession& session, std::istream& input, std::ostream& output, std::size_t nLongestLine) {
    CSystemFiles files;
    std::string strLine;
    while (output && !session.HasQuit()) {
        const ELine nLine = ReadLine(input, strLine, nLongestLine);
        if (nLine == ELine::None || nLine == ELine::Failed) {
            break;
        }
        output << (nLine == ELine::Complete
                       ? AnswerText(session, strLine, files)
                       : ErrorReply("request: longer than " + std::to_string(nLongestLine) + " bytes"))
               << '\n'
               << std::flush;
    }
}
