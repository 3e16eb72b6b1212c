// The mouse node: what it fires, logs and writes.
#include <array>
#include <bit>
#include <limits>

#include "InputNodeTest.h"

namespace {

const int DEVICE = 1, SAMPLE = 3013, LEFT_DOWN = 3005, MIDDLE_DOWN = 3007, RIGHT_DOWN = 3009;

/// All outputs with values: left, right, middle button; pixels; relative units.
struct Values {
    int bLeft, bRight, bMiddle;
    int nPixelX = 0, nPixelY = 0;
    float fRelativeX = 0, fRelativeY = 0;

    /// To the bit: zeros have a sign, and what is no number equals itself.
    friend bool operator==(const Values& a, const Values& b) {
        return std::bit_cast<std::array<int, 7>>(a) == std::bit_cast<std::array<int, 7>>(b);
    }
    friend std::ostream& operator<<(std::ostream& out, const Values& values) {
        return out << "buttons " << values.bLeft << values.bRight << values.bMiddle << ", pixel " << values.nPixelX
                   << ' ' << values.nPixelY << ", relative " << values.fRelativeX << ' ' << values.fRelativeY;
    }
};

class MouseNode : public InputNodeTest {
protected:
    MouseNode()
        : InputNodeTest(TYPE_MOUSE, {{352, "触发输出事件[进入窗口]"},
                                     {353, "触发输出事件[离开窗口]"},
                                     {354, "触发输出事件[停留]"},
                                     {355, "触发输出事件[向上滚动]"},
                                     {356, "触发输出事件[向下滚动]"},
                                     {358, "触发输出事件[左键按下]"},
                                     {359, "触发输出事件[右键按下]"},
                                     {360, "触发输出事件[中键按下]"},
                                     {362, "触发输出事件[左键抬起]"},
                                     {363, "触发输出事件[右键抬起]"},
                                     {364, "触发输出事件[中键抬起]"}}) {
        m_scene.Evaluate();
    }

    int Send(int nEvent, void* pPayload = nullptr) { return m_scene.Send(DEVICE, nEvent, pPayload); }
    int Move(int nPixelX, int nPixelY, float fRelativeX, float fRelativeY, int nPointer = 0, int bRelative = 0) {
        SQORMouseData sample(nPointer, fRelativeX, fRelativeY, CPoint(nPixelX, nPixelY), bRelative);
        return Send(SAMPLE, &sample);
    }

    Values Now() const {
        return {m_scene.Output(366).m_nValue, m_scene.Output(367).m_nValue, m_scene.Output(368).m_nValue,
                m_scene.Output(370).m_nValue, m_scene.Output(371).m_nValue, m_scene.Output(372).m_fValue,
                m_scene.Output(373).m_fValue};
    }
    Values Evaluated() {
        EXPECT_EQ(m_scene.Evaluate(), 1);
        return Now();
    }
};

// ---- Events --------------------------------------------------------------------------------------------------------

TEST_F(MouseNode, EveryEventIdHasItsOutputAndButton) {
    struct Event {
        int nEvent;
        Outputs outputs;
        int bLeft = -1, bRight = -1, bMiddle = -1; ///< -1: stays as it is
    };
    std::vector<Event> events = {{3002, {352}},
                                 {3003, {353}},
                                 {3004, {354}},
                                 {3005, {358}, 1, -1, -1},
                                 {3006, {362}, 0, -1, -1},
                                 {3007, {360}, -1, -1, 1},
                                 {3008, {364}, -1, -1, 0},
                                 {3009, {359}, -1, 1, -1},
                                 {3010, {363}, -1, 0, -1},
                                 {3011, {355}},
                                 {3012, {356}}};
    // A sample that is missing, and ids that mean nothing.
    for (const int nEvent : {3013, 3000, 3001, 3014, 3015, 3016, 3017, 3018, 3019, 3020, 0, -1, -3005, 2002, 2999,
                             3005 + 0x10000, 2147483647, -2147483647 - 1}) {
        events.push_back({nEvent, {}});
    }
    Move(10, 20, 30.5f, 40.5f);
    SQORMouseData sample(0, 50.0f, 60.0f, CPoint(70, 80), 1);
    for (const Event& event : events) {
        for (const int bHeld : {0, 1}) {
            SCOPED_TRACE("event " + std::to_string(event.nEvent) + ", buttons before " + std::to_string(bHeld));
            for (const int nDown : {LEFT_DOWN, MIDDLE_DOWN, RIGHT_DOWN}) {
                Send(bHeld ? nDown : nDown + 1);
            }
            Fired();
            const Values before{bHeld, bHeld, bHeld, 10, 20, 30.5f, 40.5f};
            ASSERT_EQ(Evaluated(), before);
            // No event but the sample's takes its payload.
            EXPECT_EQ(Send(event.nEvent, event.nEvent == SAMPLE ? nullptr : &sample), 1);
            EXPECT_EQ(Fired(), event.outputs);
            EXPECT_EQ(Now(), before) << "until the next evaluation";
            Values after = before;
            after.bLeft = event.bLeft >= 0 ? event.bLeft : bHeld;
            after.bRight = event.bRight >= 0 ? event.bRight : bHeld;
            after.bMiddle = event.bMiddle >= 0 ? event.bMiddle : bHeld;
            EXPECT_EQ(Evaluated(), after);
            EXPECT_EQ(Fired(), Outputs{});
        }
    }
}

// ---- Samples -------------------------------------------------------------------------------------------------------

TEST_F(MouseNode, SampleMovesThePositionSilently) {
    EXPECT_EQ(Now(), (Values{0, 0, 0}));
    EXPECT_EQ(Move(640, -480, 0.25f, 999.75f), 1);
    EXPECT_EQ(Fired(), Outputs{});
    EXPECT_EQ(Now(), (Values{0, 0, 0})) << "until the next evaluation";
    EXPECT_EQ(Evaluated(), (Values{0, 0, 0, 640, -480, 0.25f, 999.75f}));
    Move(5, 6, 1.0f, 2.0f, -7);
    EXPECT_EQ(Evaluated(), (Values{0, 0, 0, 5, 6, 1.0f, 2.0f})) << "of any pointer";
    Move(7, 8, 3.0f, 4.0f, 99, -1);
    EXPECT_EQ(Evaluated(), (Values{0, 0, 0, 7, 8, 3.0f, 4.0f})) << "of any kind";
}

TEST_F(MouseNode, AnyPositionPassesToTheBit) {
    const int nMost = std::numeric_limits<int>::max();
    const int nLeast = std::numeric_limits<int>::min();
    const float fMost = std::numeric_limits<float>::max();
    const float fInfinity = std::numeric_limits<float>::infinity();
    const auto fNotANumber = std::bit_cast<float>(0x7FC12345);
    for (const Values& values :
         {Values{0, 0, 0, nMost, nLeast, fMost, -fMost}, Values{0, 0, 0, nLeast, nMost, fInfinity, -fInfinity},
          Values{0, 0, 0, 1'000'000'001, -1'000'000'001, 1.5e9f, -1.5e9f}, Values{0, 0, 0, -1, -1, 1e-45f, -1e-45f},
          Values{0, 0, 0, 0, 0, fNotANumber, 5.0f}, Values{0, 0, 0, 0, 0, 1.0f, 5.0f}}) {
        Move(values.nPixelX, values.nPixelY, values.fRelativeX, values.fRelativeY);
        EXPECT_EQ(Evaluated(), values);
        EXPECT_EQ(Evaluated(), values);
    }
}

// ---- Outputs -------------------------------------------------------------------------------------------------------

TEST_F(MouseNode, EvaluationWritesEachValueInItsOwnMemberAndNoEvent) {
    MarkOutputs();
    for (int nEvent = 3000; nEvent <= 3020; ++nEvent) {
        Send(nEvent);
    }
    EXPECT_EQ(Written(), std::vector<std::string>{});
    EXPECT_EQ(Evaluated(), (Values{0, 0, 0})) << "over foreign values";
    EXPECT_EQ(Written(), (std::vector<std::string>{"366 integer", "367 integer", "368 integer", "370 integer",
                                                   "371 integer", "372 float", "373 float"}));
}

TEST_F(MouseNode, EqualPositionIsNotWrittenAgain) {
    // The two zeros are equal, but tell who wrote last.
    m_scene.Output(372).m_fValue = -0.0f;
    m_scene.Output(373).m_fValue = -0.0f;
    EXPECT_EQ(Evaluated(), (Values{0, 0, 0, 0, 0, -0.0f, -0.0f}));
    Move(0, 0, 1.0f, 0.0f);
    EXPECT_EQ(Evaluated(), (Values{0, 0, 0, 0, 0, 1.0f, -0.0f}));
}

} // namespace
