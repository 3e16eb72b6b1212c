// The queue in front of a device: order, bounds, what a lost connection takes with it, and what waits too long.
#include "network/SendQueue.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;

class SendQueue : public testing::Test {
protected:
    bool Push(std::string_view item) {
        return m_queue.Push({reinterpret_cast<const unsigned char*>(item.data()), item.size()}, "node", m_tNow);
    }

    std::string BeginWrite() {
        const auto pBytes = m_queue.BeginWrite(m_tNow);
        return {pBytes->begin(), pBytes->end()};
    }

    void ExpectCounts(size_t nItems, unsigned long long nSent, unsigned long long nLost) {
        EXPECT_EQ(m_queue.ItemCount(), nItems);
        EXPECT_EQ(m_queue.SentCount(), nSent);
        EXPECT_EQ(m_queue.LostCount(), nLost);
    }

    /// How many items are dropped once so much time has passed.
    size_t DroppedAfter(std::chrono::milliseconds time) {
        m_tNow += time;
        m_queue.DropLate(m_tNow);
        return m_queue.TakeDropped().size();
    }

    CSendQueue::Time m_tNow;
    const std::string m_strLong = std::string(100'000, 'a') + std::string(100'000, 'b');
    CSendQueue m_queue;
};

TEST_F(SendQueue, WritesInOrderAndAtOnceLongItemsInPieces) {
    EXPECT_EQ(BeginWrite(), "");
    m_queue.EndWrite();
    Push("one");
    Push("two");
    EXPECT_EQ(BeginWrite(), "onetwo");
    Push(m_strLong);
    Push("end");
    ExpectCounts(4, 0, 0);
    m_queue.EndWrite();
    ExpectCounts(2, 2, 0);
    std::string strWritten;
    for (std::string strPiece = BeginWrite(); !strPiece.empty(); strPiece = BeginWrite()) {
        EXPECT_LT(strPiece.size(), m_strLong.size());
        strWritten += strPiece;
        m_queue.EndWrite();
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
    m_queue.EndWrite();
    EXPECT_TRUE(Push("y"));
    EXPECT_EQ(BeginWrite(), "y");
}

TEST_F(SendQueue, ALostConnectionLosesWhatWasBeingWrittenOnly) {
    Push("one");
    Push("two");
    BeginWrite();
    Push(m_strLong);
    Push("next");
    m_queue.EndConnection();
    ExpectCounts(2, 0, 2);
    BeginWrite();
    m_queue.EndWrite();
    BeginWrite();
    m_queue.EndConnection(); // amid an item, which is lost whole
    ExpectCounts(1, 0, 3);
    EXPECT_EQ(BeginWrite(), "next");
    m_queue.EndWrite();
    ExpectCounts(0, 1, 3);
}

TEST_F(SendQueue, AnItemBegunOnALostConnectionIsNotContinued) {
    Push(m_strLong);
    Push("next");
    Push("last");
    BeginWrite();
    m_queue.EndWrite();
    m_queue.EndConnection();
    m_queue.EndConnection();
    ExpectCounts(2, 0, 1);
    EXPECT_EQ(BeginWrite(), "nextlast");
    m_queue.EndWrite();
    ExpectCounts(0, 2, 1);
    // Nothing of the kind is left for the next connection.
    Push(m_strLong);
    BeginWrite();
    m_queue.EndWrite();
    ExpectCounts(1, 2, 1);
}

TEST_F(SendQueue, BytesOfALostConnectionOutliveItAndDelayNoOther) {
    Push("lost");
    const auto pLost = m_queue.BeginWrite(m_tNow);
    m_queue.EndConnection();
    EXPECT_FALSE(m_queue.IsWriting());
    Push("next");
    EXPECT_EQ(BeginWrite(), "next");
    EXPECT_EQ(std::string(pLost->begin(), pLost->end()), "lost");
}

TEST_F(SendQueue, WhatWaitsTooLongIsDropped) {
    Push("kept");
    EXPECT_EQ(DroppedAfter(24h), 0u) << "no time was set";
    m_queue.SetDropAfter(100ms);
    EXPECT_EQ(DroppedAfter(0ms), 1u);
    EXPECT_EQ(m_queue.NextDrop(), std::nullopt);
    Push("first");
    EXPECT_EQ(m_queue.NextDrop(), m_tNow + 100ms);
    EXPECT_EQ(DroppedAfter(60ms), 0u);
    m_queue.Push({reinterpret_cast<const unsigned char*>("2"), 1}, std::nullopt, m_tNow);
    EXPECT_EQ(DroppedAfter(39ms), 0u);
    ExpectCounts(2, 0, 0);
    m_tNow += 1ms;
    m_queue.DropLate(m_tNow);
    EXPECT_EQ(m_queue.TakeDropped(), std::vector<CSendQueue::Sender>{"node"});
    EXPECT_EQ(m_queue.NextDrop(), m_tNow + 60ms);
    EXPECT_EQ(m_queue.ByteCount(), 1u);
    m_tNow += 60ms;
    EXPECT_EQ(BeginWrite(), "") << "a late item isn't written";
    EXPECT_EQ(m_queue.TakeDropped(), std::vector<CSendQueue::Sender>{std::nullopt});
    ExpectCounts(0, 0, 0);
}

TEST_F(SendQueue, AnItemThatWasBegunIsNeverLate) {
    m_queue.SetDropAfter(100ms);
    Push(m_strLong);
    Push("second");
    Push("third");
    BeginWrite(); // a piece of the first
    EXPECT_EQ(DroppedAfter(100ms), 2u);
    ExpectCounts(1, 0, 0);
    Push("fourth");
    m_queue.EndWrite();
    EXPECT_EQ(m_queue.NextDrop(), m_tNow + 100ms) << "of the fourth";
    EXPECT_EQ(DroppedAfter(100ms), 1u);
    while (!BeginWrite().empty()) {
        m_queue.EndWrite();
    }
    m_queue.EndWrite();
    ExpectCounts(0, 1, 0);
    EXPECT_EQ(m_queue.ByteCount(), 0u);
    // Of several short ones only that which is being written is begun.
    Push("one");
    Push("two");
    EXPECT_EQ(BeginWrite(), "one");
    EXPECT_EQ(DroppedAfter(100ms), 1u);
    m_queue.EndWrite();
    ExpectCounts(0, 2, 0);
}

} // namespace
