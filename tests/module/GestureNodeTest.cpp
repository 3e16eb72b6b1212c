// The touch gesture node: its upgrade, the strokes that it follows, what it fires and logs.
#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include <afxwin.h>
#include <gdiplus.h>

#include "HeapUse.h"
#include "InputNodeTest.h"

namespace {

const int DEVICE = 1, PRESS = 3005, RELEASE = 3006, SAMPLE = 3013;
const unsigned ENABLE = 2, VERSION = 7;
const int START_MOVE = 752, END_MOVE = 753, SINGLE_TAP = 758;
const int NONE = 0, SWIPE_LEFT = 754, SWIPE_RIGHT = 755, SWIPE_UP = 756, SWIPE_DOWN = 757;

const int MOST = std::numeric_limits<int>::max();
const int LEAST = std::numeric_limits<int>::min();
const float ENDLESS = std::numeric_limits<float>::infinity();
const float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

using Gdiplus::PointF;

// The coordinates that don't count point somewhere else.
SQORMouseData Pixel(int nX, int nY, int nPointer = 0) {
    return SQORMouseData(nPointer, -7777.0f, 8888.0f, CPoint(nX, nY), 0);
}

SQORMouseData Unit(float fX, float fY, int nPointer = 0, int bRelative = 1) {
    return SQORMouseData(nPointer, fX, fY, CPoint(-7777, 8888), bRelative);
}

using Samples = std::vector<SQORMouseData>;

Samples Pixels(const std::vector<CPoint>& points) {
    Samples samples;
    std::ranges::transform(points, std::back_inserter(samples), [](CPoint point) { return Pixel(point.x, point.y); });
    return samples;
}

Samples Units(const std::vector<PointF>& points) {
    Samples samples;
    std::ranges::transform(points, std::back_inserter(samples), [](PointF point) { return Unit(point.X, point.Y); });
    return samples;
}

/// From a point to another one.
template <typename Number>
struct Line {
    Number x1, y1, x2, y2;
};

Samples EndsOf(const Line<int>& line) {
    return {Pixel(line.x1, line.y1), Pixel(line.x2, line.y2)};
}

Samples EndsOf(const Line<float>& line) {
    return {Unit(line.x1, line.y1), Unit(line.x2, line.y2)};
}

/// What strokes along these lines end with.
template <typename Number>
struct Swipes {
    int nSwipe;
    std::vector<Line<Number>> lines;
};

Outputs Drag(int nSwipe = NONE) {
    return nSwipe != NONE ? Outputs{START_MOVE, END_MOVE, nSwipe} : Outputs{START_MOVE, END_MOVE};
}

class GestureNode : public InputNodeTest {
protected:
    GestureNode()
        : InputNodeTest(TYPE_GESTURE, {{START_MOVE, "触发输出事件[开始拖动]"},
                                       {END_MOVE, "触发输出事件[结束拖动]"},
                                       {SWIPE_LEFT, "触发输出事件[向左滑动]"},
                                       {SWIPE_RIGHT, "触发输出事件[向右滑动]"},
                                       {SWIPE_UP, "触发输出事件[向上滑动]"},
                                       {SWIPE_DOWN, "触发输出事件[向下滑动]"},
                                       {SINGLE_TAP, "触发输出事件[单击]"}}) {
        m_scene.Evaluate();
    }

    int Send(int nEvent, SQORMouseData sample) { return m_scene.Send(DEVICE, nEvent, &sample); }

    /// What a whole stroke fires: the first sample presses, the last one releases.
    Outputs FiredBy(const Samples& samples) {
        for (size_t i = 0; i < samples.size(); ++i) {
            const int nEvent = i == 0 ? PRESS : i + 1 == samples.size() ? RELEASE : SAMPLE;
            EXPECT_EQ(Send(nEvent, samples[i]), 1) << "sample " << i;
        }
        return Fired();
    }

    /// A stroke with these key points ends with that swipe.
    void ExpectSwipe(const Samples& keyPoints, int nSwipe) {
        // A sample between the key points makes it a drag, wherever they are.
        SCOPED_TRACE(testing::Message() << "by " << keyPoints.at(1).m_ptPixel.x << ' ' << keyPoints.at(1).m_ptPixel.y
                                        << " or " << keyPoints.at(1).m_fRelativeX << ' '
                                        << keyPoints.at(1).m_fRelativeY);
        SQORMouseData away = keyPoints.at(0);
        away.m_ptPixel.x ^= 0x40000000;
        away.m_fRelativeX += 100;
        away.m_fRelativeY += 100;
        EXPECT_EQ(FiredBy({keyPoints.at(0), away, keyPoints.at(1), away, keyPoints.at(2)}), Drag(nSwipe));
    }

    /// Strokes from one end of a line to the other and back.
    void ExpectThereAndBack(const auto& lines, const Outputs& outputs) {
        for (const auto& line : lines) {
            const Samples ends = EndsOf(line);
            EXPECT_EQ(FiredBy({ends[0], ends[1], ends[0]}), outputs) << line.x2 << ' ' << line.y2;
        }
    }

    /// The middle point is at either end of the line.
    template <typename Number>
    void ExpectSwipesAlong(const std::vector<Swipes<Number>>& groups) {
        for (const auto& [nSwipe, lines] : groups) {
            for (const auto& line : lines) {
                const Samples ends = EndsOf(line);
                ExpectSwipe({ends[0], ends[1], ends[1]}, nSwipe);
                ExpectSwipe({ends[0], ends[0], ends[1]}, nSwipe);
            }
        }
    }

    /// The node follows no stroke: one begins with the next press.
    void ExpectIdle() { EXPECT_EQ(FiredBy(Pixels({{0, 0}, {0, 0}})), Outputs{SINGLE_TAP}); }
};

// ---- Older projects ------------------------------------------------------------------------------------------------

class GestureNodeUpgrade : public InputNodeUpgradeTest {
protected:
    GestureNodeUpgrade() : InputNodeUpgradeTest(TYPE_GESTURE) {}

    const Groups::value_type WITHOUT_TAP = {751, {752, 753, 754, 755, 756, 757}};
};

TEST_F(GestureNodeUpgrade, OlderVersionsMakeEnableAvailable) {
    const struct {
        int nVersion;
        int nAvailable;
        int nUpgraded;
    } VERSIONS[] = {{2, 0, 1}, {LEAST, 0, 1}, {2, 5, 1}, {3, 0, 0}, {3, 5, 5}, {MOST, 0, 0}};
    Own(ENABLE).m_nValue = 0;
    for (const auto& [nVersion, nAvailable, nUpgraded] : VERSIONS) {
        SCOPED_TRACE(nVersion);
        Own(VERSION).m_nValue = nVersion;
        Own(ENABLE).m_bAvailable = nAvailable;
        m_pNode->InitParam();
        EXPECT_EQ(Own(ENABLE).m_bAvailable, nUpgraded);
        EXPECT_EQ(Own(ENABLE).m_nValue, 0) << "its value is kept";
    }
}

TEST_F(GestureNodeUpgrade, EnableIsLookedForInTheFirstGroupAlone) {
    Own(VERSION).m_nValue = 1;
    Own(ENABLE).m_bAvailable = 0;
    m_pNode->m_lstParamGroup.AddHead(new VEKParamGroup);
    m_pNode->InitParam();
    EXPECT_EQ(Own(ENABLE).m_bAvailable, 0);
}

TEST_F(GestureNodeUpgrade, MissingParametersAreNoFaultButMissingGroupsAre) {
    VEKParam& version = Own(VERSION);
    VEKParam& enable = Own(ENABLE);
    enable.m_bAvailable = 0;
    version.m_guid = MISSING;
    m_pNode->InitParam();
    EXPECT_EQ(enable.m_bAvailable, 1) << "a missing version counts as zero";
    EXPECT_EQ(m_pNode->m_lstParamGroup.GetHead()->m_lstParam.GetCount(), 2) << "none is added";
    version.m_guid = MakeParamGuid(VERSION);
    version.m_nValue = 1;
    enable.m_guid = MISSING;
    m_pNode->InitParam();
    EXPECT_EQ(version.m_nValue, 3);
    SGraphNode graphNode;
    graphNode.m_lstOutputGroup.AddTail(static_cast<VEKParamGroup*>(nullptr));
    EXPECT_TRUE(RaisesInvalidArgument([&] { m_pNode->GetNodeOutput(&graphNode); }));
    graphNode.m_lstOutputGroup.RemoveAll();
}

TEST_F(GestureNodeUpgrade, OldOutputsGainTheTapFromVersionTwoOn) {
    for (const int nVersion : {1, -1}) {
        Own(VERSION).m_nValue = nVersion;
        EXPECT_EQ(OutputsMadeOf({WITHOUT_TAP}), "751(752 753 754 755 756 757)") << nVersion;
    }
    Own(VERSION).m_nValue = 2;
    EXPECT_EQ(OutputsMadeOf({WITHOUT_TAP, {999, {}}}), "751(752 753 754 755 756 757 758) 999()");
    ExpectAsNew(SINGLE_TAP);
    EXPECT_EQ(OutputsMadeOf({{999, {}}}), "999(758)") << "whatever the first group is";
    EXPECT_EQ(OutputsMadeOf({WITHOUT_TAP, {999, {758}}}), "751(752 753 754 755 756 757) 999(758)") << "there is one";
    Own(VERSION).m_guid = MISSING;
    EXPECT_EQ(OutputsMadeOf({WITHOUT_TAP}), "751(752 753 754 755 756 757)");
}

// ---- Evaluation and records ----------------------------------------------------------------------------------------

TEST_F(GestureNode, StrokeIsKeptWhileDisabled) {
    Send(PRESS, Pixel(0, 0));
    m_scene.Input(ENABLE).m_nValue = 0;
    EXPECT_EQ(m_scene.Evaluate(), 0);
    EXPECT_EQ(Send(SAMPLE, Pixel(500, 0)), 0);
    EXPECT_EQ(Send(RELEASE, Pixel(500, 0)), 0);
    EXPECT_EQ(Fired(), Outputs{});
    m_scene.Input(ENABLE).m_nValue = 1;
    m_scene.Evaluate();
    EXPECT_EQ(Send(PRESS, Pixel(0, 0, 1)), 0) << "the stroke is still followed";
    EXPECT_EQ(Send(RELEASE, Pixel(500, 0)), 1);
    EXPECT_EQ(Fired(), Outputs{SINGLE_TAP}) << "what came meanwhile isn't part of it";
}

TEST_F(GestureNode, OtherIdsAndMissingSamplesAreWithoutEffect) {
    std::vector<int> events = {0, 1, -1, -3005, 0x10000 + 3005, MOST, LEAST};
    for (int nEvent = 2990; nEvent <= 3030; ++nEvent) {
        events.push_back(nEvent);
    }
    Send(PRESS, Pixel(0, 0));
    Send(SAMPLE, Pixel(100, 0));
    EXPECT_EQ(Fired(), Outputs{START_MOVE});
    for (const int nEvent : events) {
        EXPECT_EQ(m_scene.Send(DEVICE, nEvent, nullptr), 0) << nEvent;
        if (nEvent != PRESS && nEvent != SAMPLE && nEvent != RELEASE) {
            EXPECT_EQ(Send(nEvent, Pixel(0, 500)), 1) << nEvent;
            EXPECT_EQ(Send(nEvent, Pixel(0, 500, 1)), 1) << nEvent << ", another pointer";
        }
    }
    EXPECT_EQ(Fired(), Outputs{});
    Send(RELEASE, Pixel(200, 0));
    EXPECT_EQ(Fired(), (Outputs{END_MOVE, SWIPE_RIGHT}));
}

// ---- Strokes -------------------------------------------------------------------------------------------------------

TEST_F(GestureNode, StrokeFiresStepByStep) {
    EXPECT_EQ(Send(PRESS, Pixel(0, 0)), 1);
    EXPECT_EQ(Send(SAMPLE, Pixel(49, 49)), 1);
    EXPECT_EQ(Fired(), Outputs{});
    EXPECT_EQ(Send(SAMPLE, Pixel(100, 0)), 1);
    EXPECT_EQ(Fired(), Outputs{START_MOVE});
    m_scene.Evaluate(); // which the stroke survives
    EXPECT_EQ(Send(SAMPLE, Pixel(0, 0)), 1);
    EXPECT_EQ(Send(SAMPLE, Pixel(0, 300)), 1);
    EXPECT_EQ(Fired(), Outputs{}) << "a drag starts once a stroke";
    EXPECT_EQ(Send(SAMPLE, Pixel(150, 0)), 1);
    EXPECT_EQ(Send(RELEASE, Pixel(200, 0)), 1);
    EXPECT_EQ(Fired(), (Outputs{END_MOVE, SWIPE_RIGHT}));
    EXPECT_EQ(Send(RELEASE, Pixel(200, 0)), 0) << "released already";
}

TEST_F(GestureNode, DragBeginsWithASampleNotWithTheRelease) {
    EXPECT_EQ(FiredBy(Units({{100, 200}, {100, 200}})), Outputs{SINGLE_TAP});
    EXPECT_EQ(FiredBy(Pixels({{0, 0}, {500, 0}})), Outputs{SINGLE_TAP});
    EXPECT_EQ(FiredBy(Units({{0, 0}, {10, 0}, {500, 0}})), Outputs{SINGLE_TAP});
}

TEST_F(GestureNode, FiftyPixelsOnEitherAxisStartADrag) {
    // Differences wrap, and the lowest integer's magnitude is itself.
    const Line<int> DRAGS[] = {
        {7, 7, 57, 7},    {7, 7, -43, 7},           {7, 7, 7, 57},           {7, 7, 7, -43}, {0, 0, MOST, 0},
        {1, 0, LEAST, 0}, {LEAST, 0, MOST - 49, 0}, {0, MOST, 0, LEAST + 49}};
    const Line<int> TAPS[] = {{7, 7, 56, -42},     {7, 7, -42, 56},          {0, 0, LEAST, LEAST},
                              {LEAST, 0, MOST, 0}, {LEAST, 0, MOST - 48, 0}, {0, MOST, 0, LEAST + 48}};
    ExpectThereAndBack(DRAGS, Drag());
    ExpectThereAndBack(TAPS, {SINGLE_TAP});
}

TEST_F(GestureNode, FiftyUnitsOnEitherAxisStartADrag) {
    const float fLess = std::nextafter(50.0f, 0.0f);
    const Line<float> DRAGS[] = {
        {0, 0, 50, 0},       {0, 0, -50, 0},           {0, 0, 0, 50},           {0, 0, 0, -50}, {0, 0, ENDLESS, 0},
        {0, 0, 0, -ENDLESS}, {0, 0, NOT_A_NUMBER, 50}, {NOT_A_NUMBER, 0, 0, 50}};
    // The last three differ by no number, or not at all.
    const Line<float> TAPS[] = {{0, 0, fLess, -fLess},
                                {0, 0, -fLess, fLess},
                                {0, 0, NOT_A_NUMBER, NOT_A_NUMBER},
                                {ENDLESS, 0, ENDLESS, 0},
                                {1e9f, 0, 1e9f + 30, 0}};
    ExpectThereAndBack(DRAGS, Drag());
    ExpectThereAndBack(TAPS, {SINGLE_TAP});
}

TEST_F(GestureNode, KeyPointsAreFirstMiddleAndLast) {
    const CPoint O(0, 0);
    const CPoint AWAY(0, 300);
    const CPoint MIDDLE(100, 0);
    const CPoint LAST(200, 0);
    // The release counts: of 4 samples the third is the middle, of 5 the third, of 6 the fourth, of 7 the fourth.
    for (const auto& points : {std::vector{O, MIDDLE, LAST},
                               {O, AWAY, MIDDLE, LAST},
                               {O, AWAY, MIDDLE, AWAY, LAST},
                               {O, AWAY, AWAY, MIDDLE, AWAY, LAST},
                               {O, AWAY, AWAY, MIDDLE, AWAY, AWAY, LAST}}) {
        SCOPED_TRACE(points.size());
        EXPECT_EQ(FiredBy(Pixels(points)), Drag(SWIPE_RIGHT));
        std::vector<PointF> units;
        for (const CPoint& point : points) {
            units.emplace_back(static_cast<float>(point.x), static_cast<float>(point.y));
        }
        EXPECT_EQ(FiredBy(Units(units)), Drag(SWIPE_RIGHT));
    }
    EXPECT_EQ(FiredBy(Pixels({O, MIDDLE, AWAY, LAST})), Drag());
    EXPECT_EQ(FiredBy(Pixels({O, AWAY, MIDDLE, AWAY, AWAY, LAST})), Drag());
}

// ---- Directions, at the ends of arithmetic; those of any stroke stand in InputPropertiesTest.cpp --------------------

// A stroke deviates from its axis by less than 30 degrees. Where one at 30 degrees ends is a matter of roundings: units
// are reckoned in float all through, pixels in double until the angle is rounded to a float.
TEST_F(GestureNode, BorderOfTheConeIsThatOfEachKindsArithmetic) {
    struct Cone {
        float fAlong, fAcross;
        bool bInside;
    };
    const std::vector<Cone> BOTH = {{100, 0, true},   {100, 57, true},   {100, 58, false},  {1000, 1000, false},
                                    {26, 15, true},   {45, 26, false},   {97, 56, true},    {168, 97, false},
                                    {100, 99, false}, {1000, 577, true}, {1000, 578, false}};
    const std::vector<Cone> PIXELS = {{1351, 780, true},    {2340, 1351, false},  {5042, 2911, true},
                                      {8733, 5042, true},   {18817, 10864, true}, {3691, 2131, true},
                                      {30879, 17828, true}, {6031, 3482, false},  {7020, 4053, false}};
    // In the pixels' arithmetic all but the second would be told otherwise.
    const std::vector<Cone> UNITS = {{100, 57.7350349f, true}, {100, 57.735043f, false},  {52, 30.0222206f, true},
                                     {53, 30.5995693f, true},  {999, 576.772888f, false}, {1998, 1153.54578f, false}};
    const auto Try = [this](const Cone& cone, bool bPixels) {
        for (const float fSide : {-cone.fAcross, cone.fAcross}) {
            const auto Expect = [&](float fX, float fY, int nSwipe) {
                const auto nX = static_cast<int>(fX);
                const auto nY = static_cast<int>(fY);
                ExpectSwipe(bPixels ? Pixels({{0, 0}, {nX, -nY}, {nX, -nY}}) : Units({{0, 0}, {fX, fY}, {fX, fY}}),
                            cone.bInside ? nSwipe : NONE);
            };
            SCOPED_TRACE(testing::Message() << cone.fAlong << " along, across " << fSide);
            Expect(cone.fAlong, fSide, SWIPE_RIGHT);
            Expect(-cone.fAlong, fSide, SWIPE_LEFT);
            Expect(fSide, cone.fAlong, SWIPE_UP);
            Expect(fSide, -cone.fAlong, SWIPE_DOWN);
        }
    };
    for (const Cone& cone : BOTH) {
        Try(cone, true);
        Try(cone, false);
    }
    std::ranges::for_each(PIXELS, [&](const Cone& cone) { Try(cone, true); });
    std::ranges::for_each(UNITS, [&](const Cone& cone) { Try(cone, false); });
}

TEST_F(GestureNode, PixelsAreReckonedInWrappingIntegers) {
    ExpectSwipesAlong<int>({{SWIPE_RIGHT, {{0, 0, 46340, 0}, {0, 0, 40000, 10000}, {0, 0, 46340, 100}}},
                            {SWIPE_DOWN, {{0, 0, 0, 46340}}},
                            // The square becomes negative, 0, smaller than it should be, 1.
                            {NONE, {{0, 0, 46341, 0}, {0, 0, 65536, 0}, {0, 0, 80000, 0}, {0, 0, MOST, 0}}},
                            // The one square fits, the sum doesn't.
                            {NONE, {{0, 0, 46340, 305}, {0, 0, 0, -46341}}},
                            // Beyond the ends of the range.
                            {SWIPE_RIGHT, {{MOST, 0, LEAST, 0}, {MOST - 50, 0, LEAST + 49, 0}}},
                            {SWIPE_LEFT, {{LEAST, 0, MOST, 0}}},
                            {SWIPE_UP, {{0, LEAST, 0, MOST - 99}}},
                            {SWIPE_DOWN, {{0, MOST, 0, LEAST + 99}}},
                            // A diagonal step there; then the lowest integer, which has no magnitude.
                            {NONE, {{MOST, MOST, LEAST, LEAST}, {0, 0, LEAST, 0}, {0, 0, 0, LEAST}}},
                            {NONE, {{0, 0, LEAST, LEAST}}}});
}

TEST_F(GestureNode, UnitsAreReckonedInFloats) {
    ExpectSwipesAlong<float>(
        {{SWIPE_RIGHT, {{0.5f, 0.5f, 0.50001f, 0.5f}, {0, 0, 1e19f, 0}, {0, 0, 1e-18f, 0}, {16777216, 0, 16777218, 0}}},
         // The square is infinite, or zero; the same float; equal zeros; no numbers.
         {NONE, {{0, 0, 1e20f, 0}, {0, 0, 1e-23f, 0}, {16777216, 0, 16777217.0f, 0}, {0, 0, -0.0f, -0.0f}}},
         {NONE, {{0, 0, NOT_A_NUMBER, 0}, {0, 0, 0, NOT_A_NUMBER}, {NOT_A_NUMBER, 0, 0, 200}}},
         {NONE, {{0, 0, ENDLESS, 0}, {0, 0, 0, -ENDLESS}, {0, 0, ENDLESS, ENDLESS}}}});
    ExpectSwipe(Units({{0, 0}, {NOT_A_NUMBER, 0}, {200, 0}}), NONE);
    ExpectSwipe(Units({{0, 0}, {100, NOT_A_NUMBER}, {200, 0}}), NONE);
}

// ---- Several pointers ----------------------------------------------------------------------------------------------

TEST_F(GestureNode, SecondPointerIsRefusedInEveryState) {
    EXPECT_EQ(Send(SAMPLE, Pixel(0, 0, 5)), 0) << "idle";
    EXPECT_EQ(Send(RELEASE, Pixel(0, 0, 5)), 0);
    EXPECT_EQ(Send(PRESS, Pixel(0, 0, 3)), 1);
    for (const int nPointer : {0, 1, 4, -1, -3, 3 + 0x10000}) {
        EXPECT_EQ(Send(PRESS, Pixel(900, 900, nPointer)), 0) << nPointer;
        EXPECT_EQ(Send(SAMPLE, Pixel(900, 900, nPointer)), 0) << nPointer;
        EXPECT_EQ(Send(RELEASE, Pixel(900, 900, nPointer)), 0) << nPointer;
    }
    EXPECT_EQ(Send(PRESS, Pixel(900, 900, 3)), 0) << "pressed again without a release";
    EXPECT_EQ(Fired(), Outputs{});
    EXPECT_EQ(Send(SAMPLE, Pixel(100, 0, 3)), 1);
    EXPECT_EQ(Send(SAMPLE, Pixel(900, 900, 1)), 0) << "dragging";
    EXPECT_EQ(Send(RELEASE, Pixel(900, 900, 1)), 0);
    EXPECT_EQ(Send(RELEASE, Pixel(200, 0, 3)), 1);
    EXPECT_EQ(Fired(), Drag(SWIPE_RIGHT));
    EXPECT_EQ(Send(PRESS, Pixel(0, 0, 1)), 1) << "now another one";
}

TEST_F(GestureNode, AnyPointerIdCanBeFollowedAndAnyFlagButZeroIsRelative) {
    for (const int nNumber : {1, 2, 256, -2, MOST, LEAST}) {
        SCOPED_TRACE(nNumber);
        EXPECT_EQ(FiredBy({Pixel(0, 0, nNumber), Pixel(0, 100, nNumber), Pixel(0, 200, nNumber)}), Drag(SWIPE_DOWN));
        EXPECT_EQ(FiredBy({Unit(0, 0, 0, nNumber), Unit(0, 100, 0, nNumber), Unit(0, 200, 0, nNumber)}),
                  Drag(SWIPE_UP));
    }
}

TEST_F(GestureNode, PointerThatStandsForNoneIsFollowedButNotGuarded) {
    EXPECT_EQ(Send(SAMPLE, Pixel(0, 0, -1)), 1);
    EXPECT_EQ(Send(SAMPLE, Pixel(500, 0, -1)), 1);
    EXPECT_EQ(Fired(), Outputs{}) << "nothing was begun";
    EXPECT_EQ(Send(RELEASE, Pixel(900, 0, -1)), 1);
    EXPECT_EQ(Fired(), Outputs{SINGLE_TAP}) << "but a release fires whatever there is";
    EXPECT_EQ(Send(PRESS, Pixel(0, 0, -1)), 1);
    EXPECT_EQ(Send(SAMPLE, Pixel(100, 0, -1)), 1);
    EXPECT_EQ(Fired(), Outputs{START_MOVE});
    EXPECT_EQ(Send(PRESS, Pixel(0, 0, 4)), 1) << "the node takes itself for idle";
    EXPECT_EQ(Send(SAMPLE, Pixel(200, 0, -1)), 0);
    EXPECT_EQ(Send(RELEASE, Pixel(0, 0, 4)), 1);
    EXPECT_EQ(Fired(), Outputs{SINGLE_TAP}) << "the press began a stroke of its own";
}

TEST_F(GestureNode, PressEmptiesTheSamplesOfItsOwnKindOnly) {
    // The pointer -1 is followed without being guarded, so its sample is still there at the next press.
    const auto FiredAfter = [this](const SQORMouseData& sample, const Samples& stroke) {
        EXPECT_EQ(Send(PRESS, sample), 1);
        return FiredBy(stroke);
    };
    EXPECT_EQ(FiredAfter(Pixel(0, 0, -1), {Unit(0, 0), Unit(100, 0), Pixel(0, 100), Pixel(0, 200)}), Drag(SWIPE_DOWN));
    EXPECT_EQ(FiredAfter(Unit(0, 0, -1), {Pixel(0, 0), Pixel(100, 0), Unit(0, 100), Unit(0, 200)}), Drag(SWIPE_UP));
    EXPECT_EQ(FiredAfter(Pixel(0, 900, -1), Pixels({{0, 0}, {0, 100}, {0, 200}})), Drag(SWIPE_DOWN));
    EXPECT_EQ(FiredAfter(Unit(0, 900, -1), Units({{0, 0}, {0, 100}, {0, 200}})), Drag(SWIPE_UP));
}

// ---- Strokes of both kinds -----------------------------------------------------------------------------------------

TEST_F(GestureNode, KindOfTheReleaseDecidesAndBothAreForgottenThen) {
    const std::pair<Samples, Outputs> STROKES[] = {
        {{Pixel(0, 0), Unit(0, 0), Pixel(100, 0), Unit(0, 100), Pixel(200, 0)}, Drag(SWIPE_RIGHT)},
        {{Pixel(0, 0), Unit(0, 0), Pixel(100, 0), Unit(0, 100), Unit(0, 200)}, Drag(SWIPE_UP)},
        // A drag with too few samples of the release's kind fires nothing more.
        {{Pixel(0, 0), Pixel(100, 0), Unit(200, 0)}, {START_MOVE}},
        {{Pixel(0, 0), Pixel(100, 0), Unit(100, 0), Unit(200, 0)}, {START_MOVE}},
        {{Unit(0, 0), Unit(100, 0), Pixel(100, 0), Pixel(200, 0)}, {START_MOVE}},
        // Each kind's samples are measured from the first of them.
        {{Pixel(0, 0), Unit(500, 500), Unit(540, 500), Pixel(49, 0), Pixel(0, 0)}, {SINGLE_TAP}},
        {{Pixel(0, 0), Unit(500, 500), Pixel(49, 0), Unit(500, 550), Pixel(200, 0)}, Drag(SWIPE_RIGHT)},
        // Nor does it matter to a tap where the other kind is.
        {{Pixel(0, 0), Unit(500, 500)}, {SINGLE_TAP}},
        {{Unit(0, 0), Pixel(500, 500)}, {SINGLE_TAP}},
        // Had they been kept, the other kind's first sample would lie far from these.
        {{Pixel(0, 0), Unit(500, 0), Pixel(0, 0)}, {SINGLE_TAP}},
        {{Unit(0, 0), Pixel(500, 0), Unit(0, 0)}, {SINGLE_TAP}}};
    for (const auto& [samples, outputs] : STROKES) {
        EXPECT_EQ(FiredBy(samples), outputs);
        ExpectIdle();
    }
}

// ---- Memory --------------------------------------------------------------------------------------------------------

TEST_F(GestureNode, StrokeWithoutReleaseTakesNoMoreThanItsSamples) {
    m_host.KeepNothing();
    const int nSamples = 100'000;
    for (const int bRelative : {0, 1}) {
        const auto Sample = [bRelative](int i) {
            return bRelative ? Unit(static_cast<float>(i % 40), 0) : Pixel(i % 40, 0);
        };
        FiredBy({Sample(0), Sample(0)});
        const size_t nBefore = HeapBytesInUse();
        EXPECT_EQ(Send(PRESS, Sample(0)), 1);
        for (int i = 1; i < nSamples; ++i) {
            ASSERT_EQ(Send(SAMPLE, Sample(i)), 1);
            EXPECT_EQ(Send(PRESS, Pixel(0, 0, 1)), 0);
        }
        // 8 bytes each; the storage grows by half at most.
        EXPECT_LE(HeapBytesInUse() - nBefore, nSamples * 8 * 3 / 2 + 1024);
        EXPECT_EQ(Send(RELEASE, Sample(nSamples)), 1);
        m_host.Pump();
        EXPECT_EQ(HeapBytesInUse(), nBefore);
    }
}

} // namespace
