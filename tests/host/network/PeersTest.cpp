// The network by itself: what it hands to its receiver.
#include "NetworkPeers.h"

#include "network/Peers.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "LogSink.h"
#include "base/TextUtf8.h"

namespace {

class Peers : public testing::Test, private INetworkReceiver, private ILogSink {
protected:
    Peers() { SetLogSink(this); }
    ~Peers() override { SetLogSink(nullptr); }

    /// Wait until so many items have come, whatever became of them.
    void AwaitItems(size_t nCount) {
        EXPECT_TRUE(Until([&] { return m_nCalls >= nCount; }, [this] { m_network.Wait(10); }));
        EXPECT_EQ(m_nCalls, nCount);
    }

    size_t CountLines(const std::string& strText) const {
        return static_cast<size_t>(std::ranges::count_if(
            m_lines, [&](const std::string& strLine) { return strLine.find(strText) != std::string::npos; }));
    }

    CTestPeers m_others;
    CTestPeers::CListener m_listener{m_others};
    CPeers m_network{*this};
    std::vector<EPeer> m_items;             ///< where they came from
    std::function<void()> m_onItem = [] {}; ///< before it is taken
    size_t m_nCalls = 0;

private:
    bool OnItem(EPeer nFrom, const SIOEventRecord& /*record*/) override {
        ++m_nCalls;
        m_onItem();
        m_items.push_back(nFrom);
        return true;
    }
    std::optional<std::string> OnSent(const SSentItem& /*item*/) override { return {}; }
    void OnLogLine(const SLogLine& line) override { m_lines.push_back(Utf8(line.strText)); }

    std::vector<std::string> m_lines;
};

TEST_F(Peers, AnItemThatFailsDoesNotStopTheOthers) {
    m_network.SetDevices({{{.nId = 3,
                            .strName = "Wall",
                            .nParser = EDeviceParser::Framed,
                            .address = CTestPeers::Endpoint(m_listener.Port()),
                            .dropAfter = {}}}});
    m_network.Listen({.address = "127.0.0.1", .broadcast = 0, .control = std::nullopt});
    m_network.AwaitFirstAttempts(60'000);
    auto device = m_listener.Accept();
    const unsigned short nBroadcast = m_network.State().broadcast->nPort;

    m_onItem = [] { throw std::runtime_error("a failure"); };
    m_others.SendDatagram(nBroadcast, BROADCAST);
    AwaitItems(1);
    m_onItem = [] { AfxThrowMemoryException(); };
    m_others.SendDatagram(nBroadcast, BROADCAST);
    AwaitItems(2);
    EXPECT_EQ(CountLines("a failure"), 1u); // the second line is left out, so soon after the first
    m_onItem = [] { throw 1; };
    CTestPeers::Write(device, RecordFrame());
    AwaitItems(3);
    EXPECT_EQ(m_items.size(), 0u);
    EXPECT_EQ(m_network.State().devices->front().nState, ELinkState::Connected);

    m_onItem = [] {};
    m_others.SendDatagram(nBroadcast, BROADCAST);
    AwaitItems(4);
    CTestPeers::Write(device, RecordFrame());
    AwaitItems(5);
    EXPECT_EQ(m_items, (std::vector{EPeer::Broadcast, EPeer::Device}));
    EXPECT_EQ(m_network.State().devices->front().counts.nReceived, 2u);
    EXPECT_EQ(m_network.State().devices->front().counts.nMatched, 1u);
}

} // namespace
