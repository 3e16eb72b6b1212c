// The queue in front of a device: order, bounds, and what a lost connection takes with it.
#include "network/SendQueue.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

class SendQueue : public testing::Test {
protected:
    bool Push(std::string_view item) {
        return m_queue.Push({reinterpret_cast<const unsigned char*>(item.data()), item.size()});
    }

    std::string BeginWrite() {
        const auto bytes = m_queue.BeginWrite();
        return {bytes.begin(), bytes.end()};
    }

    void ExpectCounts(size_t nItems, unsigned long long nSent, unsigned long long nLost) {
        EXPECT_EQ(m_queue.ItemCount(), nItems);
        EXPECT_EQ(m_queue.SentCount(), nSent);
        EXPECT_EQ(m_queue.LostCount(), nLost);
    }

    const std::string m_strLong = std::string(100'000, 'a') + std::string(100'000, 'b');
    CSendQueue m_queue;
};

TEST_F(SendQueue, WritesInOrderAndAtOnceLongItemsInPieces) {
    EXPECT_EQ(BeginWrite(), "");
    m_queue.EndWrite(true);
    Push("one");
    Push("two");
    EXPECT_EQ(BeginWrite(), "onetwo");
    Push(m_strLong);
    Push("end");
    ExpectCounts(4, 0, 0);
    m_queue.EndWrite(true);
    ExpectCounts(2, 2, 0);
    std::string strWritten;
    for (std::string strPiece = BeginWrite(); !strPiece.empty(); strPiece = BeginWrite()) {
        EXPECT_LT(strPiece.size(), m_strLong.size());
        strWritten += strPiece;
        m_queue.EndWrite(true);
        EXPECT_EQ(m_queue.ByteCount(), m_strLong.size() + 3 - strWritten.size());
    }
    EXPECT_TRUE(strWritten == m_strLong + "end");
    ExpectCounts(0, 4, 0);
}

TEST_F(SendQueue, RefusesMoreThanItHolds) {
    EXPECT_FALSE(Push(std::string(CSendQueue::MOST_BYTES + 1, 'x')));
    EXPECT_TRUE(Push(std::string(CSendQueue::MOST_BYTES - 1, 'x')));
    EXPECT_FALSE(Push("yy"));
    EXPECT_TRUE(Push("y"));
    EXPECT_FALSE(Push("z"));
    EXPECT_EQ(m_queue.ByteCount(), CSendQueue::MOST_BYTES);
    m_queue = CSendQueue();
    for (std::size_t i = 0; i < CSendQueue::MOST_ITEMS; ++i) {
        EXPECT_TRUE(Push("x"));
    }
    EXPECT_FALSE(Push("y"));
    BeginWrite();
    EXPECT_FALSE(Push("y")) << "what is being written still counts";
    m_queue.EndWrite(true);
    EXPECT_TRUE(Push("y"));
    EXPECT_EQ(BeginWrite(), "y");
}

TEST_F(SendQueue, ALostWriteLosesItsItemsOnly) {
    Push("one");
    Push("two");
    BeginWrite();
    Push(m_strLong);
    Push("next");
    m_queue.EndWrite(false);
    ExpectCounts(2, 0, 2);
    BeginWrite();
    m_queue.EndWrite(true);
    BeginWrite();
    m_queue.EndWrite(false); // a piece, with which the whole item is lost
    ExpectCounts(1, 0, 3);
    EXPECT_EQ(BeginWrite(), "next");
    m_queue.EndWrite(true);
    ExpectCounts(0, 1, 3);
}

TEST_F(SendQueue, AnItemBegunOnALostConnectionIsNotContinued) {
    for (const bool bOutlasts : {false, true}) { // the write its connection
        m_queue = CSendQueue();
        Push(m_strLong);
        Push("next");
        Push("last");
        BeginWrite();
        if (bOutlasts) {
            m_queue.EndConnection();
            ExpectCounts(3, 0, 0);
            m_queue.EndWrite(true);
        } else {
            m_queue.EndWrite(true);
            m_queue.EndConnection();
            m_queue.EndConnection();
        }
        ExpectCounts(2, 0, 1);
        EXPECT_EQ(BeginWrite(), "nextlast");
        m_queue.EndWrite(true);
        ExpectCounts(0, 2, 1);
        // Nothing of the kind is left for the next connection.
        Push(m_strLong);
        BeginWrite();
        m_queue.EndWrite(true);
        ExpectCounts(1, 2, 1);
    }
}

} // namespace
