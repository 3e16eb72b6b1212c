// When a stroke becomes a drag, and which direction it has.
#include <array>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <random>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "nodes/input/StrokeRecogniser.h"

namespace {

using Gdiplus::PointF;

const int MOST = std::numeric_limits<int>::max();
const int LEAST = std::numeric_limits<int>::min();
const float ENDLESS = std::numeric_limits<float>::infinity();
const float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

const int NONE = -1;
const int LEFT = 0;
const int RIGHT = 1;
const int UP = 2;
const int DOWN = 3;

int Pixel(const std::vector<CPoint>& points) {
    return ClassifyPixelStroke(points);
}

int Relative(const std::vector<PointF>& points) {
    return ClassifyRelativeStroke(points);
}

bool HasMovedPixels(CPoint first, CPoint last) {
    return HasStartedMoving(first, last);
}

bool HasMovedUnits(PointF first, PointF last) {
    return HasStartedMoving(first, last);
}

// ---- Becoming a drag -----------------------------------------------------------------------------------------------

TEST(StrokeStart, OneSampleHasNotMoved) {
    EXPECT_FALSE(HasMovedPixels({1000, 1000}, {1000, 1000}));
    EXPECT_FALSE(HasMovedUnits({1000.0f, 1000.0f}, {1000.0f, 1000.0f}));
}

TEST(StrokeStart, FiftyPixelsOnEitherAxisAreEnough) {
    for (const int nSign : {-1, 1}) {
        EXPECT_TRUE(HasMovedPixels({7, 7}, {7 + nSign * 50, 7}));
        EXPECT_TRUE(HasMovedPixels({7, 7}, {7, 7 + nSign * 50}));
        EXPECT_FALSE(HasMovedPixels({7, 7}, {7 + nSign * 49, 7}));
        EXPECT_FALSE(HasMovedPixels({7, 7}, {7, 7 + nSign * 49}));
        EXPECT_FALSE(HasMovedPixels({7, 7}, {7 + nSign * 49, 7 - nSign * 49})) << "69 pixels away, but on no axis 50";
    }
}

TEST(StrokeStart, FiftyRelativeUnitsOnEitherAxisAreEnough) {
    const float fLess = std::nextafter(50.0f, 0.0f);
    for (const float fSign : {-1.0f, 1.0f}) {
        EXPECT_TRUE(HasMovedUnits({0, 0}, {fSign * 50.0f, 0}));
        EXPECT_TRUE(HasMovedUnits({0, 0}, {0, fSign * 50.0f}));
        EXPECT_FALSE(HasMovedUnits({0, 0}, {fSign * fLess, 0}));
        EXPECT_FALSE(HasMovedUnits({0, 0}, {0, fSign * fLess}));
        EXPECT_FALSE(HasMovedUnits({0, 0}, {fSign * fLess, -fSign * fLess}));
    }
}

TEST(StrokeStart, PixelDifferencesWrapAsThirtyTwoBitIntegers) {
    EXPECT_FALSE(HasMovedPixels({LEAST, 0}, {MOST, 0})) << "the difference is -1";
    EXPECT_FALSE(HasMovedPixels({0, MOST}, {0, LEAST})) << "the difference is 1";
    EXPECT_FALSE(HasMovedPixels({LEAST, 0}, {MOST - 48, 0})) << "-49";
    EXPECT_TRUE(HasMovedPixels({LEAST, 0}, {MOST - 49, 0})) << "-50";
    EXPECT_FALSE(HasMovedPixels({0, MOST}, {0, LEAST + 48})) << "49";
    EXPECT_TRUE(HasMovedPixels({0, MOST}, {0, LEAST + 49})) << "50";
    EXPECT_FALSE(HasMovedPixels({0, 0}, {LEAST, LEAST})) << "the lowest integer's magnitude is itself";
    EXPECT_TRUE(HasMovedPixels({1, 0}, {LEAST, 0}));
    EXPECT_TRUE(HasMovedPixels({0, 0}, {MOST, 0}));
}

TEST(StrokeStart, RelativeDifferencesMayBeAnyFloat) {
    EXPECT_TRUE(HasMovedUnits({0, 0}, {ENDLESS, 0}));
    EXPECT_TRUE(HasMovedUnits({0, 0}, {0, -ENDLESS}));
    EXPECT_FALSE(HasMovedUnits({ENDLESS, 0}, {ENDLESS, 0})) << "that difference isn't a number";
    EXPECT_FALSE(HasMovedUnits({0, 0}, {NOT_A_NUMBER, NOT_A_NUMBER}));
    EXPECT_TRUE(HasMovedUnits({0, 0}, {NOT_A_NUMBER, 50}));
    EXPECT_FALSE(HasMovedUnits({1e9f, 0}, {1e9f + 30, 0})) << "1e9 and 1e9 + 30 are the same float";
}

// ---- Direction -----------------------------------------------------------------------------------------------------

TEST(PixelStroke, StraightStrokesHaveTheirDirection) {
    EXPECT_EQ(Pixel({{0, 0}, {100, 0}, {200, 0}}), RIGHT);
    EXPECT_EQ(Pixel({{0, 0}, {-100, 0}, {-200, 0}}), LEFT);
    EXPECT_EQ(Pixel({{0, 0}, {0, 100}, {0, 200}}), DOWN) << "a larger y is lower";
    EXPECT_EQ(Pixel({{0, 0}, {0, -100}, {0, -200}}), UP);
    EXPECT_EQ(Pixel({{5, 6}, {6, 6}}), RIGHT) << "of any length, and of two points";
    EXPECT_EQ(Pixel({{5, 6}, {5, 5}}), UP);
    EXPECT_EQ(Pixel({{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}}), RIGHT) << "or of many";
}

TEST(RelativeStroke, StraightStrokesHaveTheirDirection) {
    EXPECT_EQ(Relative({{0, 0}, {100, 0}, {200, 0}}), RIGHT);
    EXPECT_EQ(Relative({{0, 0}, {-100, 0}, {-200, 0}}), LEFT);
    EXPECT_EQ(Relative({{0, 0}, {0, 100}, {0, 200}}), UP) << "a larger y is higher";
    EXPECT_EQ(Relative({{0, 0}, {0, -100}, {0, -200}}), DOWN);
    EXPECT_EQ(Relative({{0.5f, 0.5f}, {0.50001f, 0.5f}}), RIGHT);
    EXPECT_EQ(Relative({{0, 0}, {0, -1}, {0, -2}, {0, -3}, {0, -4}}), DOWN);
}

TEST(PixelStroke, FewerThanTwoPointsHaveNone) {
    EXPECT_EQ(Pixel({}), NONE);
    EXPECT_EQ(Pixel({{100, 200}}), NONE);
}

TEST(RelativeStroke, FewerThanTwoPointsHaveNone) {
    EXPECT_EQ(Relative({}), NONE);
    EXPECT_EQ(Relative({{100, 200}}), NONE);
}

TEST(PixelStroke, EqualPairsAddNothing) {
    EXPECT_EQ(Pixel({{0, 0}, {0, 0}, {200, 0}}), RIGHT);
    EXPECT_EQ(Pixel({{0, 0}, {200, 0}, {200, 0}}), RIGHT);
    EXPECT_EQ(Pixel({{7, 7}, {7, 7}, {7, 7}}), NONE);
    EXPECT_EQ(Pixel({{7, 7}, {7, 7}}), NONE);
}

TEST(RelativeStroke, EqualPairsAddNothing) {
    EXPECT_EQ(Relative({{0, 0}, {0, 0}, {0, 200}}), UP);
    EXPECT_EQ(Relative({{0, 0}, {0, 200}, {0, 200}}), UP);
    EXPECT_EQ(Relative({{7, 7}, {7, 7}, {7, 7}}), NONE);
    EXPECT_EQ(Relative({{0.0f, 0.0f}, {-0.0f, -0.0f}}), NONE) << "the two zeros are equal";
}

TEST(PixelStroke, BentStrokesHaveNone) {
    EXPECT_EQ(Pixel({{0, 0}, {100, 0}, {100, 100}}), NONE);
    EXPECT_EQ(Pixel({{0, 0}, {100, 0}, {0, 0}}), NONE) << "there and back";
    EXPECT_EQ(Pixel({{0, 0}, {100, 0}, {50, 0}}), NONE);
    EXPECT_EQ(Pixel({{0, 0}, {0, 100}, {0, 99}}), NONE);
    EXPECT_EQ(Pixel({{0, 0}, {300, 0}, {310, 20}}), NONE) << "though 4 degrees from the axis as a whole";
}

TEST(RelativeStroke, BentStrokesHaveNone) {
    EXPECT_EQ(Relative({{0, 0}, {100, 0}, {100, 100}}), NONE);
    EXPECT_EQ(Relative({{0, 0}, {100, 0}, {0, 0}}), NONE);
    EXPECT_EQ(Relative({{0, 0}, {0, 100}, {0, 99}}), NONE);
    EXPECT_EQ(Relative({{0, 0}, {300, 0}, {310, 20}}), NONE);
}

TEST(PixelStroke, ZigzagWithinItsDirectionIsStraight) {
    EXPECT_EQ(Pixel({{0, 0}, {100, -60}, {200, 0}}), RIGHT);
    EXPECT_EQ(Pixel({{0, 0}, {100, 99}, {200, 0}}), RIGHT);
    EXPECT_EQ(Pixel({{0, 0}, {100, 100}, {200, 0}}), NONE) << "a diagonal counts as vertical";
    EXPECT_EQ(Pixel({{0, 0}, {60, -100}, {0, -200}}), UP);
    EXPECT_EQ(Pixel({{0, 0}, {100, -100}, {0, -200}}), UP) << "two diagonals, both vertical";
}

TEST(RelativeStroke, ZigzagWithinItsDirectionIsStraight) {
    EXPECT_EQ(Relative({{0, 0}, {100, -60}, {200, 0}}), RIGHT);
    EXPECT_EQ(Relative({{0, 0}, {100, 100}, {200, 0}}), NONE);
    EXPECT_EQ(Relative({{0, 0}, {60, -100}, {0, -200}}), DOWN);
    EXPECT_EQ(Relative({{0, 0}, {100, 100}, {0, 200}}), UP);
}

TEST(PixelStroke, DiagonalsCountAsVertical) {
    for (const int nSign : {-1, 1}) {
        // Diagonal, then steep enough for the whole to be in the cone: only the tie decides.
        EXPECT_EQ(Pixel({{0, 0}, {nSign * 100, 100}, {nSign * 110, 300}}), DOWN);
        EXPECT_EQ(Pixel({{0, 0}, {nSign * 100, -100}, {nSign * 110, -300}}), UP);
        // By itself it's 45 degrees off.
        EXPECT_EQ(Pixel({{0, 0}, {nSign * 100, 100}, {nSign * 200, 200}}), NONE);
        EXPECT_EQ(Pixel({{0, 0}, {nSign * 100, -100}, {nSign * 200, -200}}), NONE);
        // Horizontal with a diagonal is two directions.
        EXPECT_EQ(Pixel({{0, 0}, {nSign * 100, 0}, {nSign * 150, 50}}), NONE);
    }
}

TEST(RelativeStroke, DiagonalsCountAsVertical) {
    for (const float fSign : {-1.0f, 1.0f}) {
        EXPECT_EQ(Relative({{0, 0}, {fSign * 100, 100}, {fSign * 110, 300}}), UP);
        EXPECT_EQ(Relative({{0, 0}, {fSign * 100, -100}, {fSign * 110, -300}}), DOWN);
        EXPECT_EQ(Relative({{0, 0}, {fSign * 100, 100}, {fSign * 200, 200}}), NONE);
        EXPECT_EQ(Relative({{0, 0}, {fSign * 100, 0}, {fSign * 150, 50}}), NONE);
    }
}

/// Half-width of a stroke of that length, and whether it lies in the cone of 30 degrees.
struct ConeCase {
    int nAlong;
    int nAcross;
    bool bInside;
};

// Fractions that come ever closer to the tangent of 30 degrees. The angle is rounded to a float before it is compared,
// with a limit a little above the float nearest to 30 degrees: what rounds to that float is inside.
const ConeCase PIXEL_CONE[] = {{100, 0, true},      {100, 57, true},    {100, 58, false},    {26, 15, true},
                               {45, 26, false},     {97, 56, true},     {168, 97, false},    {1351, 780, true},
                               {2340, 1351, false}, {5042, 2911, true}, {8733, 5042, true},  {18817, 10864, true},
                               {1000, 577, true},   {1000, 578, false}, {1000, 1000, false}, {100, 99, false}};

TEST(PixelStroke, MustLieInACone) {
    for (const ConeCase& cone : PIXEL_CONE) {
        SCOPED_TRACE(std::to_string(cone.nAlong) + ", " + std::to_string(cone.nAcross));
        for (const int nSide : {-1, 1}) {
            const int nAcross = nSide * cone.nAcross;
            EXPECT_EQ(Pixel({{0, 0}, {cone.nAlong, nAcross}}), cone.bInside ? RIGHT : NONE);
            EXPECT_EQ(Pixel({{0, 0}, {-cone.nAlong, nAcross}}), cone.bInside ? LEFT : NONE);
            EXPECT_EQ(Pixel({{0, 0}, {nAcross, -cone.nAlong}}), cone.bInside ? UP : NONE);
            EXPECT_EQ(Pixel({{0, 0}, {nAcross, cone.nAlong}}), cone.bInside ? DOWN : NONE);
        }
    }
}

TEST(RelativeStroke, MustLieInACone) {
    const ConeCase CONE[] = {{100, 0, true},     {100, 57, true},    {100, 58, false}, {26, 15, true},
                             {45, 26, false},    {97, 56, true},     {168, 97, false}, {1000, 577, true},
                             {1000, 578, false}, {1000, 1000, false}};
    for (const ConeCase& cone : CONE) {
        SCOPED_TRACE(std::to_string(cone.nAlong) + ", " + std::to_string(cone.nAcross));
        const auto fAlong = static_cast<float>(cone.nAlong);
        for (const float fSide : {-1.0f, 1.0f}) {
            const float fAcross = fSide * static_cast<float>(cone.nAcross);
            EXPECT_EQ(Relative({{0, 0}, {fAlong, fAcross}}), cone.bInside ? RIGHT : NONE);
            EXPECT_EQ(Relative({{0, 0}, {-fAlong, fAcross}}), cone.bInside ? LEFT : NONE);
            EXPECT_EQ(Relative({{0, 0}, {fAcross, fAlong}}), cone.bInside ? UP : NONE);
            EXPECT_EQ(Relative({{0, 0}, {fAcross, -fAlong}}), cone.bInside ? DOWN : NONE);
        }
    }
}

TEST(PixelStroke, ConeIsThatOfTheWholeStroke) {
    EXPECT_EQ(Pixel({{0, 0}, {100, 99}, {300, 100}}), RIGHT) << "45 degrees, then none: 18 as a whole";
    EXPECT_EQ(Pixel({{0, 0}, {100, 99}, {200, 198}}), NONE);
}

// ---- The pixels' arithmetic ----------------------------------------------------------------------------------------

TEST(PixelStroke, SumOfSquaresWrapsAsAThirtyTwoBitInteger) {
    EXPECT_EQ(Pixel({{0, 0}, {46340, 0}}), RIGHT);
    EXPECT_EQ(Pixel({{0, 0}, {46341, 0}}), NONE) << "the square has become negative";
    EXPECT_EQ(Pixel({{0, 0}, {65536, 0}}), NONE) << "the square has become 0";
    EXPECT_EQ(Pixel({{0, 0}, {80000, 0}}), NONE) << "the square has become smaller than it should be";
    EXPECT_EQ(Pixel({{0, 0}, {0, 46340}}), DOWN);
    EXPECT_EQ(Pixel({{0, 0}, {0, -46341}}), NONE);
    EXPECT_EQ(Pixel({{0, 0}, {40000, 10000}}), RIGHT);
    EXPECT_EQ(Pixel({{0, 0}, {46340, 100}}), RIGHT);
    EXPECT_EQ(Pixel({{0, 0}, {46340, 305}}), NONE) << "the one square fits, the sum doesn't";
}

TEST(PixelStroke, DifferencesWrapAsThirtyTwoBitIntegers) {
    EXPECT_EQ(Pixel({{MOST, 0}, {LEAST, 0}}), RIGHT) << "one step beyond the end";
    EXPECT_EQ(Pixel({{LEAST, 0}, {MOST, 0}}), LEFT);
    EXPECT_EQ(Pixel({{0, MOST}, {0, LEAST + 99}}), DOWN);
    EXPECT_EQ(Pixel({{0, LEAST}, {0, MOST - 99}}), UP);
    EXPECT_EQ(Pixel({{MOST - 50, 0}, {MOST, 0}, {LEAST + 49, 0}}), RIGHT);
    EXPECT_EQ(Pixel({{MOST, MOST}, {LEAST, LEAST}}), NONE) << "a diagonal step";
}

TEST(PixelStroke, LowestIntegerHasNoMagnitude) {
    EXPECT_EQ(Pixel({{0, 0}, {LEAST, 0}}), NONE);
    EXPECT_EQ(Pixel({{0, 0}, {0, LEAST}}), NONE);
    EXPECT_EQ(Pixel({{0, 0}, {LEAST, LEAST}}), NONE);
    EXPECT_EQ(Pixel({{0, 0}, {LEAST, 0}, {0, 0}}), NONE);
}

// ---- The relative units' arithmetic --------------------------------------------------------------------------------

TEST(RelativeStroke, ArithmeticIsThatOfFloats) {
    EXPECT_EQ(Relative({{0, 0}, {1e19f, 0}}), RIGHT);
    EXPECT_EQ(Relative({{0, 0}, {1e20f, 0}}), NONE) << "the square is infinite";
    EXPECT_EQ(Relative({{0, 0}, {1e-18f, 0}}), RIGHT);
    EXPECT_EQ(Relative({{0, 0}, {1e-23f, 0}}), NONE) << "the square is zero";
    EXPECT_EQ(Relative({{16777216.0f, 0}, {16777217.0f, 0}}), NONE) << "the same float";
    EXPECT_EQ(Relative({{16777216.0f, 0}, {16777218.0f, 0}}), RIGHT);
}

TEST(RelativeStroke, WhatIsNoNumberHasNoDirection) {
    EXPECT_EQ(Relative({{0, 0}, {NOT_A_NUMBER, 0}}), NONE);
    EXPECT_EQ(Relative({{0, 0}, {0, NOT_A_NUMBER}}), NONE);
    EXPECT_EQ(Relative({{NOT_A_NUMBER, NOT_A_NUMBER}, {100, 0}}), NONE);
    EXPECT_EQ(Relative({{0, 0}, {NOT_A_NUMBER, 0}, {200, 0}}), NONE);
    EXPECT_EQ(Relative({{0, 0}, {NOT_A_NUMBER, 0}, {100, 0}, {200, 0}}), RIGHT) << "its segments add nothing";
    EXPECT_EQ(Relative({{0, 0}, {ENDLESS, 0}}), NONE);
    EXPECT_EQ(Relative({{-ENDLESS, 0}, {ENDLESS, 0}}), NONE);
    EXPECT_EQ(Relative({{0, 0}, {0, -ENDLESS}}), NONE);
    EXPECT_EQ(Relative({{0, 0}, {ENDLESS, ENDLESS}}), NONE);
}

// ---- Random strokes ------------------------------------------------------------------------------------------------

struct PointD {
    double x;
    double y;
};

const double PI = 3.14159265358979323846;

double Degrees(double fRadians) {
    return fRadians * 180.0 / PI;
}

/// A stroke's direction as one would compute it plainly, in double, with y growing downwards; nullopt where roundings
/// decide: within fMargin degrees of the cone's border.
std::optional<int> PlainDirection(const std::vector<PointD>& points, double fMargin) {
    std::set<int> directions;
    for (size_t i = 1; i < points.size(); ++i) {
        const double dx = points[i].x - points[i - 1].x;
        const double dy = points[i].y - points[i - 1].y;
        if (dx != 0 || dy != 0) {
            const bool bVertical = std::fabs(dy) >= std::fabs(dx);
            directions.insert(bVertical ? (dy > 0 ? DOWN : UP) : (dx > 0 ? RIGHT : LEFT));
        }
    }
    const double dx = points.back().x - points.front().x;
    const double dy = points.back().y - points.front().y;
    if (directions.size() != 1 || (dx == 0 && dy == 0)) {
        return NONE;
    }
    const int nDirection = *directions.begin();
    const bool bVertical = nDirection == UP || nDirection == DOWN;
    const double fAngle =
        Degrees(bVertical ? std::atan2(std::fabs(dx), std::fabs(dy)) : std::atan2(std::fabs(dy), std::fabs(dx)));
    if (std::fabs(fAngle - 30.0) < fMargin) {
        return std::nullopt;
    }
    return fAngle < 30.0 ? nDirection : NONE;
}

/// How often each direction, none included, came up; all must for the test to mean something.
class Tally {
public:
    void Count(int nDirection) { ++m_counts.at(static_cast<size_t>(nDirection + 1)); }
    void ExpectEachAtLeast(int nCount) const {
        for (size_t i = 0; i < m_counts.size(); ++i) {
            EXPECT_GE(m_counts[i], nCount) << "direction " << static_cast<int>(i) - 1;
        }
    }

private:
    std::array<int, 5> m_counts = {};
};

const int RANDOM_STROKES = 200'000;

TEST(PixelStroke, RandomStrokesAgreeWithAPlainComputation) {
    std::mt19937 random(20240301);
    Tally tally;
    int nUndecided = 0;
    for (int i = 0; i < RANDOM_STROKES; ++i) {
        // Short strokes on a coarse grid bring up ties and equal points, long ones come close to where squares wrap.
        const int nReach = std::array{3, 100, 10'000}[static_cast<size_t>(i % 3)];
        std::uniform_int_distribution<int> coordinate(-nReach, nReach);
        std::vector<CPoint> points(static_cast<size_t>(2 + i / 3 % 2));
        std::vector<PointD> plain;
        for (CPoint& point : points) {
            point = CPoint(coordinate(random), coordinate(random));
            plain.push_back({static_cast<double>(point.x), static_cast<double>(point.y)});
        }
        const std::optional<int> expected = PlainDirection(plain, 1e-5);
        if (!expected) {
            ++nUndecided;
            continue;
        }
        ASSERT_EQ(Pixel(points), *expected) << "stroke " << i;
        tally.Count(*expected);
    }
    tally.ExpectEachAtLeast(RANDOM_STROKES / 50);
    EXPECT_LT(nUndecided, RANDOM_STROKES / 1000);
}

TEST(RelativeStroke, RandomStrokesAgreeWithAPlainComputation) {
    std::mt19937 random(20240302);
    Tally tally;
    int nUndecided = 0;
    for (int i = 0; i < RANDOM_STROKES; ++i) {
        // Multiples of 1/64 below 1000: their differences are exact in a float.
        const int nReach = std::array{3, 640, 64'000}[static_cast<size_t>(i % 3)];
        std::uniform_int_distribution<int> coordinate(-nReach, nReach);
        std::vector<PointF> points(static_cast<size_t>(2 + i / 3 % 2));
        std::vector<PointD> plain;
        for (PointF& point : points) {
            point =
                PointF(static_cast<float>(coordinate(random)) / 64.0f, static_cast<float>(coordinate(random)) / 64.0f);
            plain.push_back({static_cast<double>(point.X), -static_cast<double>(point.Y)});
        }
        const std::optional<int> expected = PlainDirection(plain, 1e-3);
        if (!expected) {
            ++nUndecided;
            continue;
        }
        ASSERT_EQ(Relative(points), *expected) << "stroke " << i;
        tally.Count(*expected);
    }
    tally.ExpectEachAtLeast(RANDOM_STROKES / 50);
    EXPECT_LT(nUndecided, RANDOM_STROKES / 1000);
}

/// What 32-bit two's complement arithmetic makes of a number.
int Wrapped(std::int64_t nValue) {
    return static_cast<int>(static_cast<std::uint32_t>(nValue));
}

/// The same for pixels of the whole 32-bit range: every intermediate result is exact, then wrapped.
int PlainWrappingDirection(const std::vector<CPoint>& points) {
    const auto Difference = [](const CPoint& a, const CPoint& b) {
        return CPoint(Wrapped(std::int64_t{b.x} - a.x), Wrapped(std::int64_t{b.y} - a.y));
    };
    const auto Magnitude = [](LONG nValue) { return Wrapped(std::abs(std::int64_t{nValue})); };
    std::set<int> directions;
    for (size_t i = 1; i < points.size(); ++i) {
        const CPoint d = Difference(points[i - 1], points[i]);
        if (points[i - 1] == points[i]) {
            continue;
        }
        if (Magnitude(d.y) >= Magnitude(d.x)) {
            directions.insert(d.y >= 0 ? DOWN : UP);
        } else {
            directions.insert(d.x >= 0 ? RIGHT : LEFT);
        }
    }
    if (directions.size() != 1 || points.front() == points.back()) {
        return NONE;
    }
    const int nDirection = *directions.begin();
    const CPoint whole = Difference(points.front(), points.back());
    const int nAlong = Magnitude(nDirection == LEFT || nDirection == RIGHT ? whole.x : whole.y);
    const int nSquares =
        Wrapped(std::int64_t{Wrapped(std::int64_t{whole.x} * whole.x)} + Wrapped(std::int64_t{whole.y} * whole.y));
    const auto fAngle = static_cast<float>(std::acos(nAlong / std::sqrt(static_cast<double>(nSquares))));
    return static_cast<double>(fAngle) < 0.5235987912027583 ? nDirection : NONE;
}

TEST(PixelStroke, StrokesOverTheWholeRangeWrap) {
    std::mt19937 random(20240303);
    std::uniform_int_distribution<int> anywhere(LEAST, MOST);
    std::uniform_int_distribution<int> nearby(-300, 300);
    const int EXTREMES[] = {LEAST, LEAST + 1, -65536, -46341, -46340, -50,      -1,  0,
                            1,     50,        46340,  46341,  65536,  MOST - 1, MOST};
    std::uniform_int_distribution<size_t> extreme(0, std::size(EXTREMES) - 1);
    Tally tally;
    for (int i = 0; i < RANDOM_STROKES; ++i) {
        std::vector<CPoint> points(static_cast<size_t>(2 + i % 2));
        CPoint last(anywhere(random), anywhere(random));
        for (CPoint& point : points) {
            switch (i % 5) {
            case 0:
                point = CPoint(anywhere(random), anywhere(random));
                break;
            case 1:
                point = CPoint(EXTREMES[extreme(random)], EXTREMES[extreme(random)]);
                break;
            default: // a short stroke at any place, also across the ends of the range
                if (i % 5 == 2) {
                    last.x = &point == points.data() ? MOST - 100 : last.x;
                }
                last = CPoint(Wrapped(std::int64_t{last.x} + nearby(random)),
                              Wrapped(std::int64_t{last.y} + nearby(random)));
                point = last;
                break;
            }
        }
        const int nDirection = Pixel(points);
        ASSERT_EQ(nDirection, PlainWrappingDirection(points)) << "stroke " << i;
        tally.Count(nDirection);
        const auto Magnitude = [](std::int64_t nValue) { return Wrapped(std::abs(std::int64_t{Wrapped(nValue)})); };
        ASSERT_EQ(HasStartedMoving(points.front(), points.back()),
                  Magnitude(std::int64_t{points.back().x} - points.front().x) >= 50 ||
                      Magnitude(std::int64_t{points.back().y} - points.front().y) >= 50)
            << "stroke " << i;
    }
    tally.ExpectEachAtLeast(RANDOM_STROKES / 100);
}

} // namespace
