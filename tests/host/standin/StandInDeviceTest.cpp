// The stand-in device: what it prints of what it's sent, and how it misbehaves when told to.
#include "NetworkPeers.h"

#include "standin/StandInDevice.h"

#include <thread>

#include "StallingReader.h"

namespace {

class StandInDevice : public testing::Test {
protected:
    ~StandInDevice() override {
        m_pReader->GoAway();
        if (m_thread.joinable()) {
            // A connection whose line can't be printed any more; refused, when another's line was the first such.
            CTestPeers::Socket last(m_peers.Context());
            boost::system::error_code error;
            last.connect({boost::asio::ip::address_v4::loopback(), m_nPort}, error);
            m_thread.join();
        }
    }

    void Start(const SStandInOptions& options) {
        m_options = options;
        m_thread = std::thread([this] { EXPECT_EQ(RunStandInDevice(m_options, Output()), 0); });
        const std::string strListening = Line().value("listening", "");
        ASSERT_TRUE(strListening.starts_with("127.0.0.1:")) << strListening;
        m_nPort = static_cast<unsigned short>(std::stoi(strListening.substr(10)));
    }

    CTestPeers::Socket Connect() {
        auto socket = m_peers.Connect(m_nPort);
        EXPECT_TRUE(Line().contains("opened"));
        return socket;
    }

    std::vector<CTestPeers::Socket> ConnectAsManyAsAreServed() {
        std::vector<CTestPeers::Socket> senders;
        for (int i = 0; i < 64; ++i) {
            senders.push_back(Connect());
        }
        return senders;
    }

    std::function<bool(std::string_view)> Output() {
        return [pReader = m_pReader](std::string_view text) { return pReader->Take(text); };
    }

    OrderedJson Line() {
        const std::string strLine = m_pReader->NextLine();
        return strLine.empty() ? OrderedJson::object() : OrderedJson::parse(strLine);
    }

    CTestPeers m_peers;
    std::shared_ptr<CStallingReader> m_pReader = std::make_shared<CStallingReader>();
    SStandInOptions m_options;
    std::thread m_thread;
    unsigned short m_nPort = 0;
};

TEST_F(StandInDevice, PrintsRecords) {
    Start({});
    auto sender = Connect();
    CTestPeers::Write(sender, RecordFrame() + RecordFrame());
    for (int i = 0; i < 2; ++i) {
        const OrderedJson line = Line();
        EXPECT_TRUE(
            Matches(line, Json::parse(R"({"connection":1,"command":50,"clip":"Clip","record":{"KeyValue":"value"}})")))
            << line;
    }
    sender.close();
    EXPECT_EQ(Line(), (OrderedJson{{"connection", 1}, {"closed", "by the sender"}}));
    auto second = m_peers.Connect(m_nPort);
    EXPECT_EQ(Line()["connection"], 2);
}

TEST_F(StandInDevice, PrintsAndAnswersBytes) {
    Start({.bFramed = false, .delay = 0});
    auto sender = Connect();
    const std::string strBytes("\x1F ~\x7F\xC3\xA9\0", 7);
    CTestPeers::Write(sender, strBytes);
    EXPECT_EQ(Line(), (OrderedJson{{"connection", 1}, {"size", 7}, {"text", ". ~...."}, {"hex", "1f207e7fc3a900"}}));
    EXPECT_EQ(m_peers.Read(sender, 7), strBytes);
}

TEST_F(StandInDevice, WhatItPrintsDoesNotSteerTheTerminal) {
    Start({});
    auto sender = Connect();
    CFrameWriter writer;
    const auto bytes = writer.Write(
        {50, "\xC2\x9B",
         "<PanelRemoteCtrl DevID=\"3\" DevName=\"\" ClipName=\"\" GroupName=\"\" KeyName=\"\" KeyNumber=\"0\" "
         "HelpParameter=\"\" KeyValue=\"\xC2\x9B]0;x\x7F\" Layer=\"0\"/>\r\n"});
    CTestPeers::Write(sender, std::string(bytes.begin(), bytes.end()));
    const std::string strLine = m_pReader->NextLine();
    EXPECT_NE(strLine.find(R"("clip":"\u009b")"), std::string::npos) << strLine;
    EXPECT_NE(strLine.find(R"(\u009b]0;x\u007f)"), std::string::npos) << strLine;
}

TEST_F(StandInDevice, SaysItsTextToEachConnection) {
    Start({.strSay = R"({"a":1})"});
    auto first = Connect();
    auto second = Connect();
    EXPECT_EQ(m_peers.Read(second, 8), "{\"a\":1}\n");
    EXPECT_EQ(m_peers.Read(first, 8), "{\"a\":1}\n");
}

TEST_F(StandInDevice, NamesWhatItRejects) {
    Start({});
    auto sender = Connect();
    CTestPeers::Write(sender, "this is no frame at all");
    EXPECT_EQ(Line(), (OrderedJson{{"connection", 1}, {"rejected", 1}, {"last_rejected", "bad magic"}}));
    EXPECT_EQ(Line(), (OrderedJson{{"connection", 1}, {"closed", "out of step"}}));
    EXPECT_TRUE(m_peers.IsClosed(sender));
    auto second = Connect();
    CTestPeers::Write(second, RecordFrame().substr(0, 30));
    second.close();
    EXPECT_EQ(Line()["last_rejected"], "truncated");
}

TEST_F(StandInDevice, AnswersLate) {
    Start({.delay = 100});
    auto sender = Connect();
    const auto tStart = std::chrono::steady_clock::now();
    CTestPeers::Write(sender, RecordFrame() + RecordFrame());
    EXPECT_EQ(m_peers.Read(sender, 2 * RecordFrame().size()), RecordFrame() + RecordFrame());
    EXPECT_GE(std::chrono::steady_clock::now() - tStart, std::chrono::milliseconds(100));
}

TEST_F(StandInDevice, Refuses) {
    Start({.bRefuse = true});
    auto sender = Connect();
    EXPECT_EQ(Line()["closed"], "refused");
    EXPECT_TRUE(m_peers.IsClosed(sender));
}

TEST_F(StandInDevice, DropsAfterSoManyBytes) {
    Start({.bFramed = false, .dropAfter = 10});
    auto sender = Connect();
    CTestPeers::Write(sender, "12345");
    EXPECT_EQ(Line()["size"], 5);
    CTestPeers::Write(sender, "6789012345");
    EXPECT_EQ(Line()["text"], "67890");
    EXPECT_EQ(Line()["closed"], "dropped after 10 bytes");
    EXPECT_TRUE(m_peers.IsClosed(sender));
}

TEST_F(StandInDevice, StallsSoManyConnectionsOnly) {
    Start({.bStall = true});
    auto first = Connect();
    for (int i = 0; i < 64; ++i) {
        Connect().close();
    }
    EXPECT_TRUE(m_peers.IsClosed(first));
}

TEST_F(StandInDevice, TurnsAwayWhoIsTooMany) {
    Start({});
    auto senders = ConnectAsManyAsAreServed();
    auto tooMany = Connect();
    EXPECT_EQ(Line(), (OrderedJson{{"connection", 65}, {"closed", "turned away: 64 others are open"}}));
    EXPECT_TRUE(m_peers.IsClosed(tooMany));
    senders.front().close();
    EXPECT_EQ(Line()["connection"], 1);
    CTestPeers::Write(senders.back(), RecordFrame());
    EXPECT_EQ(Line()["command"], 50);
    EXPECT_EQ(Connect().available(), 0u);
}

TEST_F(StandInDevice, WhoHasBeenSilentForLongestMakesRoom) {
    Start({.bFramed = false, .silence = std::chrono::milliseconds(0)});
    auto senders = ConnectAsManyAsAreServed();
    CTestPeers::Write(senders.front(), "first");
    EXPECT_EQ(Line()["text"], "first");
    auto next = m_peers.Connect(m_nPort);
    const OrderedJson lines[] = {Line(), Line()};
    const auto& closed = lines[lines[0].contains("closed") ? 0 : 1];
    EXPECT_EQ(closed, (OrderedJson{{"connection", 2}, {"closed", "silent, made room for another"}}));
    EXPECT_TRUE(m_peers.IsClosed(senders[1]));
    CTestPeers::Write(next, "next");
    EXPECT_EQ(Line()["text"], "next");
}

TEST_F(StandInDevice, Stalls) {
    Start({.bStall = true});
    auto sender = Connect();
    sender.non_blocking(true);
    const std::string strMuch(1 << 20, 'x');
    boost::system::error_code error;
    size_t nSent = 0;
    for (int i = 0; i < 100 && !error; ++i) {
        nSent += sender.write_some(boost::asio::buffer(strMuch), error);
    }
    EXPECT_EQ(error, boost::asio::error::would_block) << "after " << nSent << " bytes";
    EXPECT_TRUE(m_peers.Connect(m_nPort).is_open());
}

TEST_F(StandInDevice, LinesThatNobodyReadsInTimeAreCounted) {
    constexpr int RECORDS = 1000;
    Start({.delay = 0});
    auto sender = Connect();
    m_pReader->Stall(true);
    const std::string strFrame = RecordFrame(std::string(2000, 'x')); // all their lines are more than is queued
    std::string strFrames;
    for (int i = 0; i < RECORDS; ++i) {
        strFrames += strFrame;
    }
    std::string strAnswers;
    m_peers.Write(sender, strFrames, [&] {
        const size_t nBegin = strAnswers.size();
        strAnswers.resize(nBegin + sender.available());
        boost::asio::read(sender, boost::asio::buffer(strAnswers.data() + nBegin, strAnswers.size() - nBegin));
    });
    strAnswers += m_peers.Read(sender, strFrames.size() - strAnswers.size());
    EXPECT_TRUE(strAnswers == strFrames);
    m_pReader->Stall(false);
    int nLines = 0;
    OrderedJson line = Line();
    for (; line.contains("record"); line = Line()) {
        ++nLines;
    }
    EXPECT_GT(nLines, 0);
    EXPECT_EQ(line, (OrderedJson{{"missing_lines", RECORDS - nLines}}));
    CTestPeers::Write(sender, strFrame);
    EXPECT_TRUE(Line().contains("record"));
}

TEST_F(StandInDevice, ATakenPortIsAnError) {
    const CTestPeers::CListener taken(m_peers);
    EXPECT_EQ(RunStandInDevice({.nPort = taken.Port()}, Output()), 1);
    EXPECT_EQ(RunStandInDevice({.strAddress = "here"}, Output()), 1);
}

} // namespace
