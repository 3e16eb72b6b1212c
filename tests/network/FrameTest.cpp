// Play-control frames: their bytes, and a reader that takes them in pieces and names what it refuses.
#include <map>

#include "NetworkTest.h"
#include "PlayControlFrame.h"

namespace {

/// A frame as a test compares it.
struct ReadFrame {
    unsigned nCommand;
    std::string clip;
    std::string body;

    friend bool operator==(const ReadFrame&, const ReadFrame&) = default;
    friend std::ostream& operator<<(std::ostream& out, const ReadFrame& frame) {
        return out << frame.nCommand << " [" << frame.clip << "] [" << frame.body << ']';
    }
};

class Receiver final : public IFrameReceiver {
public:
    EFrameVerdict OnFrame(const SPlayControlFrame& frame) override {
        m_frames.push_back({frame.nCommandCode, std::string(frame.clip), std::string(frame.body)});
        return m_verdict;
    }

    EFrameVerdict m_verdict = EFrameVerdict::Taken;
    std::vector<ReadFrame> m_frames;
};

Bytes Frame(unsigned nCommand, std::string_view clip, std::string_view body) {
    CFrameWriter writer;
    const auto bytes = writer.Write({nCommand, clip, body});
    return {bytes.begin(), bytes.end()};
}

/// The counts that aren't 0, by name.
std::map<std::string, unsigned long long> Refused(const CFrameReader& reader) {
    std::map<std::string, unsigned long long> counts;
    for (size_t i = 0; i < FRAME_REFUSAL_COUNT; ++i) {
        const auto nRefusal = static_cast<EFrameRefusal>(i);
        if (reader.RefusedCount(nRefusal) != 0) {
            counts[FrameRefusalName(nRefusal)] = reader.RefusedCount(nRefusal);
        }
    }
    return counts;
}

using Counts = std::map<std::string, unsigned long long>;

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

const ReadFrame FIRST{50, "Intro", "<a/>"};
const ReadFrame SECOND{50, "", ""};

Bytes BytesOf(const ReadFrame& frame) {
    return Frame(frame.nCommand, frame.clip, frame.body);
}

TEST(Frame, HasTheseBytes) {
    EXPECT_EQ(Frame(50, "Intro", "<a/>"), (Bytes{'Q', 'P', 'C', 'F', 0,   1,   0,   5,   0,   0,   0,   9,  0,
                                                 0,   0,   50,  'I', 'n', 't', 'r', 'o', '<', 'a', '/', '>'}));
    EXPECT_EQ(Frame(0x01020304, "", ""), (Bytes{'Q', 'P', 'C', 'F', 0, 1, 0, 0, 0, 0, 0, 0, 1, 2, 3, 4}));
}

TEST(Frame, TooLongOnesAreNotWritten) {
    const std::string body(FRAME_BODY_LIMIT, 'x');
    EXPECT_EQ(Frame(50, "", body).size(), FRAME_HEADER_SIZE + FRAME_BODY_LIMIT);
    EXPECT_TRUE(Frame(50, "", body + "x").empty());
    EXPECT_TRUE(Frame(50, "c", body).empty());
    EXPECT_FALSE(Frame(50, std::string(0xFFFF, 'c'), "").empty());
    EXPECT_TRUE(Frame(50, std::string(0x10000, 'c'), "").empty());
}

TEST(FrameReader, TakesFramesSplitAtEveryByte) {
    const Bytes bytes = BytesOf(FIRST) + BytesOf(SECOND) + BytesOf(FIRST);
    for (size_t nSplit = 0; nSplit <= bytes.size(); ++nSplit) {
        CFrameReader reader;
        Receiver receiver;
        EXPECT_TRUE(reader.Feed(std::span(bytes).first(nSplit), receiver));
        EXPECT_TRUE(reader.Feed(std::span(bytes).subspan(nSplit), receiver));
        EXPECT_EQ(receiver.m_frames, (std::vector{FIRST, SECOND, FIRST})) << "split at " << nSplit;
        reader.Finish();
        EXPECT_EQ(Refused(reader), Counts{});
        EXPECT_EQ(reader.TakenCount(), 3u);
    }
}

TEST(FrameReader, TakesFramesByteForByte) {
    CFrameReader reader;
    Receiver receiver;
    for (const unsigned char nByte : BytesOf(FIRST) + BytesOf(SECOND)) {
        EXPECT_TRUE(reader.Feed({&nByte, 1}, receiver));
    }
    EXPECT_EQ(receiver.m_frames, (std::vector{FIRST, SECOND}));
}

TEST(FrameReader, TakesTheLongestFrame) {
    const ReadFrame longest{7, std::string(0xFFFF, 'c'), std::string(FRAME_BODY_LIMIT - 0xFFFF, 'b')};
    CFrameReader reader;
    Receiver receiver;
    EXPECT_TRUE(reader.Feed(BytesOf(longest), receiver));
    ASSERT_EQ(receiver.m_frames.size(), 1u);
    EXPECT_TRUE(receiver.m_frames[0] == longest);
}

TEST(FrameReader, PassesOverAnotherVersion) {
    Bytes other = BytesOf(FIRST);
    other[5] = 2;
    CFrameReader reader;
    Receiver receiver;
    EXPECT_TRUE(reader.Feed(other + BytesOf(SECOND), receiver));
    EXPECT_EQ(receiver.m_frames, std::vector{SECOND});
    EXPECT_EQ(Refused(reader), (Counts{{"wrong version", 1}}));
}

TEST(FrameReader, PassesOverAClipLongerThanTheBody) {
    Bytes malformed = BytesOf(FIRST);
    malformed[7] = 10; // the body has 9
    CFrameReader reader;
    Receiver receiver;
    EXPECT_TRUE(reader.Feed(malformed + BytesOf(SECOND), receiver));
    EXPECT_EQ(receiver.m_frames, std::vector{SECOND});
    EXPECT_EQ(Refused(reader), (Counts{{"malformed", 1}}));
}

TEST(FrameReader, CountsWhatTheReceiverRefuses) {
    CFrameReader reader;
    Receiver receiver;
    receiver.m_verdict = EFrameVerdict::UnknownCommand;
    EXPECT_TRUE(reader.Feed(BytesOf(FIRST), receiver));
    receiver.m_verdict = EFrameVerdict::Malformed;
    EXPECT_TRUE(reader.Feed(BytesOf(FIRST), receiver));
    receiver.m_verdict = EFrameVerdict::Taken;
    EXPECT_TRUE(reader.Feed(BytesOf(FIRST), receiver));
    EXPECT_EQ(Refused(reader), (Counts{{"unknown command", 1}, {"malformed", 1}}));
    EXPECT_EQ(reader.TakenCount(), 1u);
}

TEST(FrameReader, ClosesOnBadMagic) {
    for (size_t nPlace = 0; nPlace < 4; ++nPlace) {
        Bytes broken = BytesOf(FIRST);
        broken[nPlace] ^= 0x20;
        CFrameReader reader;
        Receiver receiver;
        EXPECT_FALSE(reader.Feed(broken + BytesOf(SECOND), receiver));
        EXPECT_FALSE(reader.Feed(BytesOf(SECOND), receiver));
        EXPECT_EQ(receiver.m_frames, std::vector<ReadFrame>{});
        EXPECT_EQ(Refused(reader), (Counts{{"bad magic", 1}}));
    }
}

TEST(FrameReader, ClosesOnAnOversizedBodyBeforeItCame) {
    Bytes header = Frame(50, "", "");
    header[9] = 0x10; // 1 MiB
    header[11] = 1;   // and one byte
    CFrameReader reader;
    Receiver receiver;
    EXPECT_FALSE(reader.Feed(header, receiver));
    EXPECT_EQ(Refused(reader), (Counts{{"oversized", 1}}));
    reader.Finish();
    EXPECT_EQ(Refused(reader), (Counts{{"oversized", 1}}));
}

TEST(FrameReader, AConnectionThatEndsWithinAFrameIsTruncated) {
    const Bytes bytes = BytesOf(FIRST);
    for (size_t nLength = 1; nLength < bytes.size(); ++nLength) {
        CFrameReader reader;
        Receiver receiver;
        EXPECT_TRUE(reader.Feed(std::span(bytes).first(nLength), receiver));
        reader.Finish();
        EXPECT_EQ(Refused(reader), (Counts{{"truncated", 1}})) << nLength;
        EXPECT_TRUE(reader.Feed(bytes, receiver));
        EXPECT_EQ(receiver.m_frames, std::vector{FIRST});
    }
}

TEST(FrameReader, ReadsAgainAfterReset) {
    CFrameReader reader;
    Receiver receiver;
    EXPECT_FALSE(reader.Feed(ToBytes("GET / HTTP/1.1\r\n"), receiver));
    reader.Reset();
    EXPECT_TRUE(reader.Feed(BytesOf(FIRST), receiver));
    EXPECT_EQ(receiver.m_frames, std::vector{FIRST});
    EXPECT_EQ(Refused(reader), (Counts{{"bad magic", 1}}));
}

TEST(FrameReader, AnEndBetweenFramesIsNotTruncated) {
    CFrameReader reader;
    Receiver receiver;
    reader.Finish();
    reader.Feed(BytesOf(FIRST), receiver);
    reader.Finish();
    EXPECT_EQ(Refused(reader), Counts{});
}

} // namespace
