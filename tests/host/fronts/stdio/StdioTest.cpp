// The line front on streams.
#include "HostTest.h"

#include <sstream>

#include "fronts/stdio/StdioFront.h"

namespace {

class Stdio : public CHostTest {
protected:
    std::string Run(const std::string& strInput, std::size_t nLongest = LONGEST_LINE) {
        std::istringstream input(strInput);
        std::ostringstream output;
        RunStdio(*m_pSession, input, output, nLongest);
        return output.str();
    }
};

TEST_F(Stdio, EachLineGetsOneReplyLineInOrder) {
    EXPECT_EQ(Run(""), "");
    EXPECT_EQ(Run("{\"op\":\"objects\",\"id\":1}\r\n\n{\"op\":\"objects\"}"),
              "{\"ok\":true,\"id\":1,\"objects\":[]}\n"
              "{\"ok\":false,\"error\":\"request: not JSON, from byte 1 on\"}\n"
              "{\"ok\":true,\"objects\":[]}\n");
    EXPECT_EQ(Run("{\"op\":\"quit\"}\n{\"op\":\"objects\"}\n"), "{\"ok\":true}\n");
}

TEST_F(Stdio, TooLongALineIsRefusedAndReadPast) {
    const std::string strRequest = R"({"op":"objects"})";
    const std::string strEmpty = "{\"ok\":true,\"objects\":[]}\n";
    const std::string strRefused = "{\"ok\":false,\"error\":\"request: longer than 16 bytes\"}\n";
    EXPECT_EQ(Run(strRequest + "\n" + strRequest + " \n" + std::string(100'000, 'x') + "\n" + strRequest, 16),
              strEmpty + strRefused + strRefused + strEmpty);
}

TEST_F(Stdio, LossOfTheOutputEndsTheService) {
    std::istringstream input("{\"op\":\"objects\"}\n{\"op\":\"objects\"}\n");
    std::ostringstream output;
    output.setstate(std::ios::badbit);
    RunStdio(*m_pSession, input, output);
    EXPECT_EQ(input.tellg(), 0);
}

} // namespace
