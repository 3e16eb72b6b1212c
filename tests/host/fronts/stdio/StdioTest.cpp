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

/// Two requests, behind which reading fails as of a terminal that is gone.
class CLostInput final : public std::stringbuf {
public:
    CLostInput() : std::stringbuf("{\"op\":\"objects\"}\n{\"op\":\"quit\"") {}

private:
    int underflow() override { throw std::ios_base::failure("error reading the file"); }
};

TEST_F(Stdio, LossOfTheInputIsItsEnd) {
    CLostInput buffer;
    std::istream input(&buffer);
    std::ostringstream output;
    RunStdio(*m_pSession, input, output);
    EXPECT_EQ(output.str(), "{\"ok\":true,\"objects\":[]}\n");
    EXPECT_FALSE(m_pSession->HasQuit()) << "what was cut off is no request";
}

TEST_F(Stdio, LossOfTheOutputEndsTheService) {
    std::istringstream input("{\"op\":\"objects\"}\n{\"op\":\"objects\"}\n");
    std::ostringstream output;
    output.setstate(std::ios::badbit);
    RunStdio(*m_pSession, input, output);
    EXPECT_EQ(input.tellg(), 0);
}

} // namespace
