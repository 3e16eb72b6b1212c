// The zones of a touch-pad and their borders.
#include <cmath>
#include <limits>
#include <map>
#include <random>

#include <gtest/gtest.h>

#include "nodes/input/TouchPad.h"

namespace {

const float ENDLESS = std::numeric_limits<float>::infinity();
const float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

float Above(float fValue) {
    return std::nextafter(fValue, ENDLESS);
}

float Below(float fValue) {
    return std::nextafter(fValue, -ENDLESS);
}

TEST(TouchPad, HasFiveZones) {
    EXPECT_EQ(ClassifyTouchPad(0.0f, 0.0f), CLICK_CENTER);
    EXPECT_EQ(ClassifyTouchPad(0.1f, 0.1f), CLICK_CENTER);
    EXPECT_EQ(ClassifyTouchPad(-0.4f, 0.4f), CLICK_CENTER);
    EXPECT_EQ(ClassifyTouchPad(-0.0f, -0.0f), CLICK_CENTER);
    EXPECT_EQ(ClassifyTouchPad(0.8f, 0.2f), CLICK_RIGHT);
    EXPECT_EQ(ClassifyTouchPad(-0.8f, 0.2f), CLICK_LEFT);
    EXPECT_EQ(ClassifyTouchPad(0.2f, 0.9f), CLICK_TOP);
    EXPECT_EQ(ClassifyTouchPad(0.2f, -0.9f), CLICK_BOTTOM);
    EXPECT_EQ(ClassifyTouchPad(1.0f, 0.0f), CLICK_RIGHT);
    EXPECT_EQ(ClassifyTouchPad(-1.0f, 0.0f), CLICK_LEFT);
    EXPECT_EQ(ClassifyTouchPad(0.0f, 1.0f), CLICK_TOP);
    EXPECT_EQ(ClassifyTouchPad(0.0f, -1.0f), CLICK_BOTTOM);
}

TEST(TouchPad, BorderOfTheCentreBelongsToNoZone) {
    for (const float fOther : {0.0f, 0.3f, -0.3f, Below(0.5f), -Below(0.5f)}) {
        SCOPED_TRACE(fOther);
        EXPECT_EQ(ClassifyTouchPad(Below(0.5f), fOther), CLICK_CENTER);
        EXPECT_EQ(ClassifyTouchPad(0.5f, fOther), CLICK_NONE);
        EXPECT_EQ(ClassifyTouchPad(Above(0.5f), fOther), CLICK_RIGHT);
        EXPECT_EQ(ClassifyTouchPad(-Below(0.5f), fOther), CLICK_CENTER);
        EXPECT_EQ(ClassifyTouchPad(-0.5f, fOther), CLICK_NONE);
        EXPECT_EQ(ClassifyTouchPad(-Above(0.5f), fOther), CLICK_LEFT);
        EXPECT_EQ(ClassifyTouchPad(fOther, Below(0.5f)), CLICK_CENTER);
        EXPECT_EQ(ClassifyTouchPad(fOther, 0.5f), CLICK_NONE);
        EXPECT_EQ(ClassifyTouchPad(fOther, Above(0.5f)), CLICK_TOP);
        EXPECT_EQ(ClassifyTouchPad(fOther, -Below(0.5f)), CLICK_CENTER);
        EXPECT_EQ(ClassifyTouchPad(fOther, -0.5f), CLICK_NONE);
        EXPECT_EQ(ClassifyTouchPad(fOther, -Above(0.5f)), CLICK_BOTTOM);
    }
}

TEST(TouchPad, CornersOfTheCentre) {
    for (const float fX : {-0.5f, 0.5f}) {
        for (const float fY : {-0.5f, 0.5f}) {
            EXPECT_EQ(ClassifyTouchPad(fX, fY), CLICK_NONE);
            EXPECT_EQ(ClassifyTouchPad(fX > 0 ? Above(fX) : Below(fX), fY), fX > 0 ? CLICK_RIGHT : CLICK_LEFT);
            EXPECT_EQ(ClassifyTouchPad(fX, fY > 0 ? Above(fY) : Below(fY)), fY > 0 ? CLICK_TOP : CLICK_BOTTOM);
            EXPECT_EQ(ClassifyTouchPad(fX > 0 ? Above(fX) : Below(fX), fY > 0 ? Above(fY) : Below(fY)), CLICK_NONE);
            EXPECT_EQ(ClassifyTouchPad(fX > 0 ? Below(fX) : Above(fX), fY), CLICK_NONE);
            EXPECT_EQ(ClassifyTouchPad(fX > 0 ? Below(fX) : Above(fX), fY > 0 ? Below(fY) : Above(fY)), CLICK_CENTER);
        }
    }
}

TEST(TouchPad, DiagonalsBelongToNoZone) {
    for (const float fPlace : {0.6f, 0.7f, 0.70710677f, 1.0f, 5.0f}) {
        for (const float fX : {-fPlace, fPlace}) {
            for (const float fY : {-fPlace, fPlace}) {
                SCOPED_TRACE(std::to_string(fX) + ", " + std::to_string(fY));
                const ETouchPadClick nHorizontal = fX > 0 ? CLICK_RIGHT : CLICK_LEFT;
                const ETouchPadClick nVertical = fY > 0 ? CLICK_TOP : CLICK_BOTTOM;
                EXPECT_EQ(ClassifyTouchPad(fX, fY), CLICK_NONE);
                EXPECT_EQ(ClassifyTouchPad(fX > 0 ? Above(fX) : Below(fX), fY), nHorizontal);
                EXPECT_EQ(ClassifyTouchPad(fX > 0 ? Below(fX) : Above(fX), fY), nVertical);
                EXPECT_EQ(ClassifyTouchPad(fX, fY > 0 ? Above(fY) : Below(fY)), nVertical);
                EXPECT_EQ(ClassifyTouchPad(fX, fY > 0 ? Below(fY) : Above(fY)), nHorizontal);
            }
        }
    }
}

TEST(TouchPad, PositionsMayBeAnyFloat) {
    EXPECT_EQ(ClassifyTouchPad(ENDLESS, 0.0f), CLICK_RIGHT);
    EXPECT_EQ(ClassifyTouchPad(0.0f, -ENDLESS), CLICK_BOTTOM);
    EXPECT_EQ(ClassifyTouchPad(ENDLESS, ENDLESS), CLICK_NONE);
    EXPECT_EQ(ClassifyTouchPad(-ENDLESS, 1e30f), CLICK_LEFT);
    EXPECT_EQ(ClassifyTouchPad(NOT_A_NUMBER, 0.0f), CLICK_NONE);
    EXPECT_EQ(ClassifyTouchPad(0.8f, NOT_A_NUMBER), CLICK_NONE);
    EXPECT_EQ(ClassifyTouchPad(NOT_A_NUMBER, NOT_A_NUMBER), CLICK_NONE);
    EXPECT_EQ(ClassifyTouchPad(1e-45f, -1e-45f), CLICK_CENTER);
}

TEST(TouchPad, RandomPositionsAgreeWithAPlainComputation) {
    std::mt19937 random(20240304);
    std::map<ETouchPadClick, int> counts;
    for (int i = 0; i < 100'000; ++i) {
        // Every other position on a coarse grid, where borders and diagonals are met.
        const int nSteps = i % 2 == 0 ? 8 : 1 << 20;
        std::uniform_int_distribution<int> coordinate(-nSteps, nSteps);
        const int nX = coordinate(random);
        const int nY = coordinate(random);
        ETouchPadClick nExpected = CLICK_NONE;
        if (2 * std::abs(nX) < nSteps && 2 * std::abs(nY) < nSteps) {
            nExpected = CLICK_CENTER;
        } else if (std::abs(nX) > std::abs(nY) && 2 * std::abs(nX) > nSteps) {
            nExpected = nX > 0 ? CLICK_RIGHT : CLICK_LEFT;
        } else if (std::abs(nY) > std::abs(nX) && 2 * std::abs(nY) > nSteps) {
            nExpected = nY > 0 ? CLICK_TOP : CLICK_BOTTOM;
        }
        ASSERT_EQ(ClassifyTouchPad(static_cast<float>(nX) / static_cast<float>(nSteps),
                                   static_cast<float>(nY) / static_cast<float>(nSteps)),
                  nExpected)
            << nX << ", " << nY << " of " << nSteps;
        ++counts[nExpected];
    }
    EXPECT_EQ(counts.size(), 6U);
    for (const auto& [nClick, nCount] : counts) {
        EXPECT_GT(nCount, 1'000) << nClick;
    }
}

} // namespace
