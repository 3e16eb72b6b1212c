// Random and mutated bytes into the broadcasts' reader: nothing breaks, and nothing is kept.
#include <algorithm>
#include <random>

#include "BroadcastDatagram.h"
#include "HeapUse.h"
#include "NetworkTest.h"
#include "host/EventRecord.h"

namespace {

constexpr size_t BYTE_COUNT = 1'000'000;

class Mutator {
public:
    /// Random bytes, sometimes; otherwise the original with some bytes changed, taken out, doubled or cut off.
    Bytes Make(const Bytes& original) {
        if (Below(8) == 0) {
            Bytes bytes(1 + Below(200));
            std::generate(bytes.begin(), bytes.end(), [this] { return RandomByte(); });
            return bytes;
        }
        Bytes bytes = original;
        for (size_t nLeft = Below(6); nLeft > 0 && !bytes.empty(); --nLeft) {
            const auto place = bytes.begin() + static_cast<std::ptrdiff_t>(Below(bytes.size()));
            switch (Below(5)) {
            case 0:
                *place = RandomByte();
                break;
            case 1:
                *place ^= static_cast<unsigned char>(1u << Below(8));
                break;
            case 2:
                bytes.erase(place);
                break;
            case 3:
                bytes.insert(place, RandomByte());
                break;
            default:
                bytes.resize(Below(bytes.size() + 1));
                break;
            }
        }
        return bytes;
    }

    size_t Below(size_t nEnd) { return m_random() % nEnd; }

private:
    unsigned char RandomByte() { return static_cast<unsigned char>(m_random()); }

    std::mt19937 m_random{20240611};
};

TEST(Fuzz, TheBroadcastReaderSurvivesAMillionBytes) {
    const Bytes original =
        ToBytes("[.{<Broadcast Flag=\"1\" ClipName=\"In&amp;tro\" Name=\"&#13;score\" Data=\"12|7\"/>\r\n}.]");
    Mutator mutator;
    int nTaken = 0;
    int nRefused[BROADCAST_REFUSAL_COUNT] = {};
    std::size_t nHeapBefore = 0;
    for (size_t nFed = 0; nFed < BYTE_COUNT;) {
        const Bytes bytes = mutator.Make(original);
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
