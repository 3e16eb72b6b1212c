// Who is served when more hosts send records than there are places.
#include "NetworkPeers.h"

#include "network/ControlListener.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

#if __has_include(<sys/resource.h>)
#include <sys/resource.h>
#endif

namespace {

class ControlListener : public testing::Test, private INetworkReceiver {
protected:
    /// Everybody who is silent at all makes room.
    ControlListener()
        : m_pListener(std::make_shared<CControlListener>(m_loop, CTestPeers::Endpoint(0),
                                                         std::chrono::steady_clock::duration())) {
        EXPECT_EQ(m_pListener->Open(), "");
        m_pListener->Start();
        for (int i = 0; i < 64; ++i) {
            m_hosts.push_back(m_peers.Connect(m_pListener->Port()));
        }
        RunUntil([this] { return m_pListener->State().nConnections == 64; });
    }
    ~ControlListener() override {
        m_pListener->Stop();
        m_loop.Context().restart();
        m_loop.Context().poll();
    }

    template <typename Condition>
    void RunUntil(Condition isMet) {
        m_loop.Context().restart();
        EXPECT_TRUE(Until(isMet, [this] { m_loop.Context().run_one_for(LONGEST_WAIT); }));
    }

    void AwaitRecords(unsigned long long nCount) {
        RunUntil([&] { return m_pListener->State().counts.nReceived == nCount; });
    }

    CTestPeers m_peers;
    CPeerLoop m_loop{*this};
    std::shared_ptr<CControlListener> m_pListener;
    std::vector<CTestPeers::Socket> m_hosts;

private:
    bool OnItem(EPeer /*nFrom*/, const SIOEventRecord& /*record*/) override { return true; }
    std::optional<std::string> OnSent(const SSentItem& /*item*/) override { return {}; }
};

TEST_F(ControlListener, WhoHasBeenSilentForLongestMakesRoom) {
    m_loop.Gate().Open();
    CTestPeers::Write(m_hosts.front(), RecordFrame());
    AwaitRecords(1);
    auto next = m_peers.Connect(m_pListener->Port());
    CTestPeers::Write(next, RecordFrame());
    AwaitRecords(2);
    EXPECT_TRUE(m_peers.IsClosed(m_hosts[1]));
    CTestPeers::Write(m_hosts.front(), RecordFrame());
    CTestPeers::Write(m_hosts.back(), RecordFrame());
    AwaitRecords(4);
    EXPECT_EQ(m_pListener->State().nConnections, 64u);
    EXPECT_EQ(m_pListener->State().nTurnedAway, 0u);
}

TEST_F(ControlListener, WhoseRecordsWaitToBeTakenIsNotSilent) {
    for (auto& host : m_hosts) {
        CTestPeers::Write(host, RecordFrame());
    }
    auto next = m_peers.Connect(m_pListener->Port());
    RunUntil([this] { return m_pListener->State().nTurnedAway == 1; });
    EXPECT_TRUE(m_peers.IsClosed(next));
    m_loop.Gate().Open();
    AwaitRecords(64);
}

#if __has_include(<sys/resource.h>)
TEST_F(ControlListener, WhoComesWhileTheSystemLacksFilesIsTakenLater) {
    m_loop.Gate().Open();
    m_hosts.front().close();
    RunUntil([this] { return m_pListener->State().nConnections == 63; });
    auto next = m_peers.Connect(m_pListener->Port());
    rlimit limit = {};
    getrlimit(RLIMIT_NOFILE, &limit);
    const rlimit none = {0, limit.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    RunUntil([this] { return m_pListener->State().nErrors == 2; });
    setrlimit(RLIMIT_NOFILE, &limit);
    EXPECT_EQ(m_pListener->State().strLastError, std::error_code(EMFILE, std::system_category()).message());
    CTestPeers::Write(next, RecordFrame());
    AwaitRecords(1);
}
#endif

} // namespace
