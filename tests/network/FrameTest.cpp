// Play-control frames: their bytes, and a reader that takes them in pieces and names what it refuses.
#include <map>

#include "NetworkTest.h"
#include "PlayControlFrame.h"

namespace {

using Counts = std::map<std::string, unsigned long long>;

class Receiver final : public IFrameReceiver {
public:
    EFrameVerdict OnFrame(const SPlayControlFrame& frame) override {
        m_frames.push_back(std::to_string(frame.nCommandCode) + '|' + std::string(frame.clip) + '|' +
                           std::string(frame.body));
        return frame.clip == "unknown"     ? EFrameVerdict::UnknownCommand
               : frame.clip == "malformed" ? EFrameVerdict::Malformed
                                           : EFrameVerdict::Taken;
    }

    std::vector<std::string> m_frames;
};

Bytes Frame(unsigned nCommand, std::string_view clip, std::string_view body) {
    CFrameWriter writer;
    const auto bytes = writer.Write({nCommand, clip, body});
    return {bytes.begin(), bytes.end()};
}

/// The frame with one of its bytes changed.
Bytes With(Bytes frame, size_t nPlace, unsigned char nByte) {
    frame[nPlace] = nByte;
    return frame;
}

/// The counts that aren't 0, by name.
Counts Refused(const CFrameReader& reader) {
    Counts counts;
    for (size_t i = 0; i < FRAME_REFUSAL_COUNT; ++i) {
        const auto nRefusal = static_cast<EFrameRefusal>(i);
        if (reader.RefusedCount(nRefusal) != 0) {
            counts[FrameRefusalName(nRefusal)] = reader.RefusedCount(nRefusal);
        }
    }
    return counts;
}

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

const Bytes FIRST = Frame(50, "Intro", "<a/>");
const Bytes SECOND = Frame(0x01020304, "", "");
const std::vector<std::string> FIRST_READ = {"50|Intro|<a/>"};
const std::vector<std::string> SECOND_READ = {"16909060||"};

TEST(Frame, HasTheseBytesUnlessItIsTooLong) {
    EXPECT_EQ(FIRST, (Bytes{'Q', 'P', 'C', 'F', 0,   1,   0,   5,   0,   0,   0,   9,  0,
                            0,   0,   50,  'I', 'n', 't', 'r', 'o', '<', 'a', '/', '>'}));
    EXPECT_EQ(SECOND, (Bytes{'Q', 'P', 'C', 'F', 0, 1, 0, 0, 0, 0, 0, 0, 1, 2, 3, 4}));
    const std::string body(FRAME_BODY_LIMIT, 'x');
    EXPECT_TRUE(Frame(50, "", body + "x").empty());
    EXPECT_TRUE(Frame(50, "c", body).empty());
    EXPECT_TRUE(Frame(50, std::string(0x10000, 'c'), "").empty());
    // The longest is written and read.
    CFrameReader reader;
    Receiver receiver;
    EXPECT_TRUE(reader.Feed(Frame(7, std::string(0xFFFF, 'c'), body.substr(0xFFFF)), receiver));
    EXPECT_EQ(receiver.m_frames, (std::vector{"7|" + std::string(0xFFFF, 'c') + '|' + body.substr(0xFFFF)}));
}

TEST(FrameReader, TakesAndRefusesWhereverTheBytesAreSplit) {
    const struct {
        Bytes bytes;
        std::vector<std::string> frames;
        Counts refused;
        bool bInStep = true;
    } cases[] = {
        {FIRST, FIRST_READ, {}},
        {SECOND + SECOND, {SECOND_READ[0], SECOND_READ[0]}, {}},
        {With(FIRST, 5, 2) + SECOND, SECOND_READ, {{"wrong version", 1}}},
        {With(FIRST, 7, 10) + SECOND, SECOND_READ, {{"malformed", 1}}}, // a clip longer than the body
        {Frame(50, "unknown", "") + SECOND, {"50|unknown|", SECOND_READ[0]}, {{"unknown command", 1}}},
        {Frame(50, "malformed", "") + SECOND, {"50|malformed|", SECOND_READ[0]}, {{"malformed", 1}}},
        {With(FIRST, 0, 'q') + SECOND, {}, {{"bad magic", 1}}, false},
        {With(FIRST, 3, 0) + SECOND, {}, {{"bad magic", 1}}, false},
        {With(With(SECOND, 9, 0x10), 11, 1), {}, {{"oversized", 1}}, false}, // by one byte, before any of them came
        {{FIRST.begin(), FIRST.begin() + 1}, {}, {{"truncated", 1}}},
        {SECOND + Bytes(FIRST.begin(), FIRST.end() - 1), SECOND_READ, {{"truncated", 1}}},
    };
    for (const auto& [bytes, frames, refused, bInStep] : cases) {
        for (size_t nPiece = bytes.size(); nPiece > 0; --nPiece) {
            CFrameReader reader;
            Receiver receiver;
            bool bStaysInStep = true;
            for (size_t nBegin = 0; nBegin < bytes.size(); nBegin += nPiece) {
                bStaysInStep = reader.Feed(
                    std::span(bytes).subspan(nBegin).first(std::min(nPiece, bytes.size() - nBegin)), receiver);
            }
            reader.Finish();
            EXPECT_EQ(receiver.m_frames, frames) << testing::PrintToString(refused) << " in pieces of " << nPiece;
            EXPECT_EQ(Refused(reader), refused);
            EXPECT_EQ(bStaysInStep, bInStep);
            // Another connection begins anew, and the counts go on.
            reader.Reset();
            EXPECT_TRUE(reader.Feed(FIRST, receiver));
            EXPECT_EQ(receiver.m_frames.back(), FIRST_READ[0]);
            EXPECT_EQ(Refused(reader), refused);
        }
    }
}

} // namespace
