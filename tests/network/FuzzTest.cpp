// Mutated bytes into the broadcasts' reader: nothing breaks, and nothing is kept.
#include <random>

#include "BroadcastDatagram.h"
#include "HeapUse.h"
#include "NetworkTest.h"
#include "host/EventRecord.h"

namespace {

constexpr size_t BYTE_COUNT = 1'000'000;

/// With some bytes changed, taken out, doubled or cut off.
Bytes Mutated(Bytes bytes, std::mt19937& random) {
    for (auto nLeft = random() % 6; nLeft > 0 && !bytes.empty(); --nLeft) {
        const auto place = bytes.begin() + static_cast<std::ptrdiff_t>(random() % bytes.size());
        switch (random() % 5) {
        case 0:
            *place = static_cast<unsigned char>(random());
            break;
        case 1:
            *place ^= static_cast<unsigned char>(1u << random() % 8);
            break;
        case 2:
            bytes.erase(place);
            break;
        case 3:
            bytes.insert(place, static_cast<unsigned char>(random()));
            break;
        default:
            bytes.erase(place, bytes.end());
        }
    }
    return bytes;
}

TEST(Fuzz, TheBroadcastReaderSurvivesAMillionBytes) {
    const Bytes original =
        ToBytes("[.{<Broadcast Flag=\"1\" ClipName=\"In&amp;tro\" Name=\"&#13;score\" Data=\"12|7\"/>\r\n}.]");
    std::mt19937 random(20240611);
    int nTaken = 0;
    int nRefused[BROADCAST_REFUSAL_COUNT] = {};
    std::size_t nHeapBefore = 0;
    for (size_t nFed = 0; nFed < BYTE_COUNT;) {
        const Bytes bytes = Mutated(original, random);
        nFed += bytes.size();
        SBroadcastItem item;
        EBroadcastRefusal nRefusal{};
        if (ReadBroadcast(bytes, item, nRefusal)) {
            ++nTaken;
        } else {
            ++nRefused[static_cast<size_t>(nRefusal)];
        }
        if (nHeapBefore == 0 && nFed > BYTE_COUNT / 10) {
            nHeapBefore = HeapBytesInUse();
        }
    }
    EXPECT_LE(HeapBytesInUse(), nHeapBefore + 4096);
    EXPECT_GT(nTaken, 100);
    EXPECT_GT(nRefused[static_cast<size_t>(EBroadcastRefusal::NotFramed)], 100);
    EXPECT_GT(nRefused[static_cast<size_t>(EBroadcastRefusal::NotXml)], 100);
    EXPECT_GT(nRefused[static_cast<size_t>(EBroadcastRefusal::AttributeMissing)], 10);
}

} // namespace
