// The queue in front of a device: order, bounds, and what a lost connection takes with it.
#include "network/SendQueue.h"

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<unsigned char>;

bool Push(CSendQueue& queue, std::string_view item) {
    return queue.Push({reinterpret_cast<const unsigned char*>(item.data()), item.size()});
}

std::string BeginWrite(CSendQueue& queue) {
    const auto bytes = queue.BeginWrite();
    return {bytes.begin(), bytes.end()};
}

TEST(SendQueue, WritesInOrderAndAtOnce) {
    CSendQueue queue;
    EXPECT_EQ(BeginWrite(queue), "");
    queue.EndWrite(true);
    EXPECT_TRUE(Push(queue, "one"));
    EXPECT_TRUE(Push(queue, "two"));
    EXPECT_EQ(BeginWrite(queue), "onetwo");
    EXPECT_TRUE(Push(queue, "three"));
    EXPECT_EQ(queue.ItemCount(), 3u);
    queue.EndWrite(true);
    EXPECT_EQ(queue.SentCount(), 2u);
    EXPECT_EQ(queue.ItemCount(), 1u);
    EXPECT_EQ(BeginWrite(queue), "three");
    queue.EndWrite(true);
    EXPECT_EQ(queue.SentCount(), 3u);
    EXPECT_EQ(queue.ByteCount(), 0u);
    EXPECT_EQ(queue.LostCount(), 0u);
}

TEST(SendQueue, RefusesMoreItemsThanItHolds) {
    CSendQueue queue;
    for (std::size_t i = 0; i < CSendQueue::MOST_ITEMS; ++i) {
        EXPECT_TRUE(Push(queue, "x"));
    }
    EXPECT_FALSE(Push(queue, "y"));
    EXPECT_EQ(queue.ItemCount(), CSendQueue::MOST_ITEMS);
    queue.BeginWrite();
    EXPECT_FALSE(Push(queue, "y")) << "what is being written still counts";
    queue.EndWrite(true);
    EXPECT_TRUE(Push(queue, "y"));
    EXPECT_EQ(BeginWrite(queue), "y");
}

TEST(SendQueue, RefusesMoreBytesThanItHolds) {
    CSendQueue queue;
    EXPECT_FALSE(Push(queue, std::string(CSendQueue::MOST_BYTES + 1, 'x')));
    EXPECT_TRUE(Push(queue, std::string(CSendQueue::MOST_BYTES - 1, 'x')));
    EXPECT_FALSE(Push(queue, "yy"));
    EXPECT_TRUE(Push(queue, "y"));
    EXPECT_FALSE(Push(queue, "z"));
    EXPECT_EQ(queue.ByteCount(), CSendQueue::MOST_BYTES);
}

TEST(SendQueue, LongItemsGoOutInPieces) {
    CSendQueue queue;
    const std::string strLong = std::string(100'000, 'a') + std::string(100'000, 'b');
    Push(queue, strLong);
    Push(queue, "end");
    std::string strWritten;
    int nWrites = 0;
    for (std::string strPiece = BeginWrite(queue); !strPiece.empty(); strPiece = BeginWrite(queue)) {
        strWritten += strPiece;
        queue.EndWrite(true);
        EXPECT_EQ(queue.ByteCount(), strLong.size() + 3 - strWritten.size());
        ++nWrites;
    }
    EXPECT_TRUE(strWritten == strLong + "end");
    EXPECT_GT(nWrites, 2);
    EXPECT_EQ(queue.SentCount(), 2u);
}

TEST(SendQueue, ALostWriteLosesItsItemsOnly) {
    CSendQueue queue;
    Push(queue, "one");
    Push(queue, "two");
    BeginWrite(queue);
    Push(queue, "three");
    queue.EndWrite(false);
    EXPECT_EQ(queue.LostCount(), 2u);
    EXPECT_EQ(queue.SentCount(), 0u);
    EXPECT_EQ(BeginWrite(queue), "three");
}

TEST(SendQueue, ALostPieceLosesTheWholeItem) {
    CSendQueue queue;
    Push(queue, std::string(200'000, 'a'));
    Push(queue, "next");
    BeginWrite(queue);
    queue.EndWrite(true);
    BeginWrite(queue);
    queue.EndWrite(false);
    EXPECT_EQ(queue.LostCount(), 1u);
    EXPECT_EQ(BeginWrite(queue), "next");
    queue.EndWrite(true);
    EXPECT_EQ(queue.SentCount(), 1u);
}

TEST(SendQueue, AnItemBegunOnALostConnectionIsNotContinued) {
    CSendQueue queue;
    Push(queue, std::string(200'000, 'a'));
    Push(queue, "next");
    BeginWrite(queue);
    queue.EndWrite(true);
    queue.EndConnection();
    EXPECT_EQ(queue.LostCount(), 1u);
    queue.EndConnection();
    EXPECT_EQ(queue.LostCount(), 1u);
    EXPECT_EQ(BeginWrite(queue), "next");
}

TEST(SendQueue, AWriteThatOutlastsItsConnectionIsNotContinuedEither) {
    CSendQueue queue;
    Push(queue, std::string(200'000, 'a'));
    Push(queue, "next");
    Push(queue, "last");
    BeginWrite(queue);
    queue.EndConnection();
    EXPECT_EQ(queue.LostCount(), 0u);
    queue.EndWrite(true);
    EXPECT_EQ(queue.LostCount(), 1u);
    EXPECT_EQ(BeginWrite(queue), "nextlast");
    queue.EndWrite(true);
    EXPECT_EQ(queue.SentCount(), 2u);

    // Nothing of the kind is left for the next connection.
    Push(queue, std::string(200'000, 'a'));
    BeginWrite(queue);
    queue.EndWrite(true);
    EXPECT_EQ(queue.LostCount(), 1u);
    EXPECT_EQ(queue.ItemCount(), 1u);
}

} // namespace
