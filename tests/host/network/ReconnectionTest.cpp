// When a connection is tried again.
#include "NetworkPeers.h"

#include "network/Reconnection.h"

namespace {

class Reconnection : public testing::Test {
protected:
    void Await(CReconnection& connection, std::function<void()> onEnd) {
        boost::asio::co_spawn(m_context, connection.AwaitNext(), [onEnd](const std::exception_ptr&) { onEnd(); });
    }

    boost::asio::io_context m_context;
    CReconnection m_connection{m_context};
};

TEST_F(Reconnection, PausesDoubleUpToASecondAfterConnectionsThatWereSoonLost) {
    const auto tBegin = std::chrono::steady_clock::now();
    Await(m_connection, [] {});
    m_context.run();
    EXPECT_GE(std::chrono::steady_clock::now() - tBegin, std::chrono::milliseconds(100));
    for (const int nMs : {200, 400, 800, 1000, 1000}) {
        m_connection.OnConnectionLasted(std::chrono::milliseconds(999));
        EXPECT_EQ(m_connection.NextPause(), std::chrono::milliseconds(nMs));
    }
}

TEST_F(Reconnection, AGoodConnectionIsTriedAgainSoonAndStopEndsThePause) {
    CReconnection good(m_context);
    std::string strEnded;
    for (int i = 0; i < 10; ++i) { // each pause is ended at once
        for (CReconnection* pConnection : {&m_connection, &good}) {
            Await(*pConnection, [] {});
            m_context.restart();
            m_context.poll();
            pConnection->Stop();
            m_context.restart();
            m_context.run();
        }
    }
    good.OnConnectionLasted(std::chrono::seconds(1));
    Await(m_connection, [&] { strEnded += "lost "; });
    Await(good, [&] {
        strEnded += "good ";
        m_connection.Stop();
    });
    m_context.restart();
    m_context.run();
    EXPECT_EQ(strEnded, "good lost ");
}

} // namespace
