// Lines for a reader that nobody waits for.
#include "base/OutputLines.h"

#include <chrono>
#include <future>

#include "StallingReader.h"

namespace {

class OutputLines : public testing::Test {
protected:
    SOutputLinesOptions Options(size_t nMostBytes = 1000) {
        return {.write = [pReader = m_pReader](std::string_view text) { return pReader->Take(text); },
                .missingLine = [](unsigned long long nLines) { return std::to_string(nLines) + " missing\n"; },
                .onClosed = [this] { m_closed.set_value(); }, // throws the second time
                .nMostBytes = nMostBytes,
                .patience = m_patience};
    }

    std::shared_ptr<CStallingReader> m_pReader = std::make_shared<CStallingReader>();
    std::promise<void> m_closed;
    std::chrono::milliseconds m_patience = std::chrono::minutes(1);
};

TEST_F(OutputLines, ComeInOrderAndAreAllThereAtTheEnd) {
    std::string strExpected;
    {
        COutputLines lines(Options());
        for (int i = 0; i < 100; ++i) {
            const std::string strLine = "line " + std::to_string(i) + "\n";
            lines.Print(strLine);
            strExpected += strLine;
        }
    }
    EXPECT_EQ(m_pReader->Taken(), strExpected);
    EXPECT_EQ(m_closed.get_future().wait_for(std::chrono::seconds(0)), std::future_status::timeout);
}

TEST_F(OutputLines, ThoseThatAStalledReaderLeavesNoRoomForAreCounted) {
    m_pReader->Stall(true);
    {
        COutputLines lines(Options(20));
        lines.Print("first\n");
        m_pReader->AwaitCall();
        lines.Print("second\n");
        lines.Print("two\nlines too long\n");
        lines.Print("x\n"); // there's room for it, but not before the others
        m_pReader->Stall(false);
    }
    EXPECT_EQ(m_pReader->Taken(), "first\nsecond\n3 missing\n");
}

TEST_F(OutputLines, AStalledReaderHoldsUpTheEndForAMomentOnly) {
    m_patience = std::chrono::milliseconds(10);
    m_pReader->Stall(true);
    {
        COutputLines lines(Options());
        lines.Print("never read\n");
        m_pReader->AwaitCall();
    }
    EXPECT_EQ(m_pReader->Taken(), "");
    m_pReader->Stall(false); // lets the thread end
}

TEST_F(OutputLines, AReaderThatGoesAwayIsTold) {
    m_pReader->GoAway();
    {
        COutputLines lines(Options());
        lines.Print("refused\n");
        m_closed.get_future().wait();
        lines.Print("dropped\n");
    }
    EXPECT_EQ(m_pReader->Taken(), "refused\n");
}

} // namespace
