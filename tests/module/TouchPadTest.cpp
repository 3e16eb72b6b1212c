// What a VR handle node clicks when the touch-pad is released: the zones and their borders.
#include <cmath>
#include <limits>
#include <map>
#include <random>

#include "ModuleHost.h"

namespace {

const float ENDLESS = std::numeric_limits<float>::infinity();
const float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

float Above(float fValue) {
    return std::nextafter(fValue, ENDLESS);
}

float Below(float fValue) {
    return std::nextafter(fValue, -ENDLESS);
}

enum EClick : int {
    CLICK_NONE = 0,
    CLICK_CENTER = 867,
    CLICK_LEFT = 868,
    CLICK_RIGHT = 869,
    CLICK_TOP = 870,
    CLICK_BOTTOM = 871
};

class TouchPad : public ModuleTest {
protected:
    TouchPad() { m_scene.Evaluate(); }

    /// Press and release the touch-pad with the thumb at this place, and say what was clicked.
    int Click(float fX, float fY) {
        SVRPluginData sample;
        sample.m_fTouchPadX = fX;
        sample.m_fTouchPadY = fY;
        sample.m_bTouchPadPressed = 1;
        EXPECT_EQ(m_scene.Send(3, 1, &sample), 1);
        sample.m_bTouchPadPressed = 0;
        EXPECT_EQ(m_scene.Send(3, 1, &sample), 1);
        const std::vector<int> fired = m_host.TakeFiredOutputs();
        EXPECT_TRUE(fired.size() == 2 || fired.size() == 3);
        return fired.size() == 3 ? fired[2] : CLICK_NONE;
    }

    NodeScene m_scene{m_host, TYPE_VR_HANDLE};
};

TEST_F(TouchPad, HasFiveZones) {
    EXPECT_EQ(Click(0.0f, 0.0f), CLICK_CENTER);
    EXPECT_EQ(Click(0.1f, 0.1f), CLICK_CENTER);
    EXPECT_EQ(Click(-0.4f, 0.4f), CLICK_CENTER);
    EXPECT_EQ(Click(-0.0f, -0.0f), CLICK_CENTER);
    EXPECT_EQ(Click(0.8f, 0.2f), CLICK_RIGHT);
    EXPECT_EQ(Click(-0.8f, 0.2f), CLICK_LEFT);
    EXPECT_EQ(Click(0.2f, 0.9f), CLICK_TOP);
    EXPECT_EQ(Click(0.2f, -0.9f), CLICK_BOTTOM);
    EXPECT_EQ(Click(1.0f, 0.0f), CLICK_RIGHT);
    EXPECT_EQ(Click(-1.0f, 0.0f), CLICK_LEFT);
    EXPECT_EQ(Click(0.0f, 1.0f), CLICK_TOP);
    EXPECT_EQ(Click(0.0f, -1.0f), CLICK_BOTTOM);
}

TEST_F(TouchPad, BorderOfTheCentreBelongsToNoZone) {
    for (const float fOther : {0.0f, 0.3f, -0.3f, Below(0.5f), -Below(0.5f)}) {
        SCOPED_TRACE(fOther);
        EXPECT_EQ(Click(Below(0.5f), fOther), CLICK_CENTER);
        EXPECT_EQ(Click(0.5f, fOther), CLICK_NONE);
        EXPECT_EQ(Click(Above(0.5f), fOther), CLICK_RIGHT);
        EXPECT_EQ(Click(-Below(0.5f), fOther), CLICK_CENTER);
        EXPECT_EQ(Click(-0.5f, fOther), CLICK_NONE);
        EXPECT_EQ(Click(-Above(0.5f), fOther), CLICK_LEFT);
        EXPECT_EQ(Click(fOther, Below(0.5f)), CLICK_CENTER);
        EXPECT_EQ(Click(fOther, 0.5f), CLICK_NONE);
        EXPECT_EQ(Click(fOther, Above(0.5f)), CLICK_TOP);
        EXPECT_EQ(Click(fOther, -Below(0.5f)), CLICK_CENTER);
        EXPECT_EQ(Click(fOther, -0.5f), CLICK_NONE);
        EXPECT_EQ(Click(fOther, -Above(0.5f)), CLICK_BOTTOM);
    }
}

TEST_F(TouchPad, CornersOfTheCentre) {
    for (const float fX : {-0.5f, 0.5f}) {
        for (const float fY : {-0.5f, 0.5f}) {
            EXPECT_EQ(Click(fX, fY), CLICK_NONE);
            EXPECT_EQ(Click(fX > 0 ? Above(fX) : Below(fX), fY), fX > 0 ? CLICK_RIGHT : CLICK_LEFT);
            EXPECT_EQ(Click(fX, fY > 0 ? Above(fY) : Below(fY)), fY > 0 ? CLICK_TOP : CLICK_BOTTOM);
            EXPECT_EQ(Click(fX > 0 ? Above(fX) : Below(fX), fY > 0 ? Above(fY) : Below(fY)), CLICK_NONE);
            EXPECT_EQ(Click(fX > 0 ? Below(fX) : Above(fX), fY), CLICK_NONE);
            EXPECT_EQ(Click(fX > 0 ? Below(fX) : Above(fX), fY > 0 ? Below(fY) : Above(fY)), CLICK_CENTER);
        }
    }
}

TEST_F(TouchPad, DiagonalsBelongToNoZone) {
    for (const float fPlace : {0.6f, 0.7f, 0.70710677f, 1.0f, 5.0f}) {
        for (const float fX : {-fPlace, fPlace}) {
            for (const float fY : {-fPlace, fPlace}) {
                SCOPED_TRACE(std::to_string(fX) + ", " + std::to_string(fY));
                const EClick nHorizontal = fX > 0 ? CLICK_RIGHT : CLICK_LEFT;
                const EClick nVertical = fY > 0 ? CLICK_TOP : CLICK_BOTTOM;
                EXPECT_EQ(Click(fX, fY), CLICK_NONE);
                EXPECT_EQ(Click(fX > 0 ? Above(fX) : Below(fX), fY), nHorizontal);
                EXPECT_EQ(Click(fX > 0 ? Below(fX) : Above(fX), fY), nVertical);
                EXPECT_EQ(Click(fX, fY > 0 ? Above(fY) : Below(fY)), nVertical);
                EXPECT_EQ(Click(fX, fY > 0 ? Below(fY) : Above(fY)), nHorizontal);
            }
        }
    }
}

TEST_F(TouchPad, PositionsMayBeAnyFloat) {
    EXPECT_EQ(Click(ENDLESS, 0.0f), CLICK_RIGHT);
    EXPECT_EQ(Click(0.0f, -ENDLESS), CLICK_BOTTOM);
    EXPECT_EQ(Click(ENDLESS, ENDLESS), CLICK_NONE);
    EXPECT_EQ(Click(-ENDLESS, 1e30f), CLICK_LEFT);
    EXPECT_EQ(Click(NOT_A_NUMBER, 0.0f), CLICK_NONE);
    EXPECT_EQ(Click(0.8f, NOT_A_NUMBER), CLICK_NONE);
    EXPECT_EQ(Click(NOT_A_NUMBER, NOT_A_NUMBER), CLICK_NONE);
    EXPECT_EQ(Click(1e-45f, -1e-45f), CLICK_CENTER);
}

TEST_F(TouchPad, RandomPositionsAgreeWithAPlainComputation) {
    std::mt19937 random(20240304);
    std::map<EClick, int> counts;
    for (int i = 0; i < 2'000; ++i) {
        // Every other position on a coarse grid, where borders and diagonals are met.
        const int nSteps = i % 2 == 0 ? 8 : 1 << 20;
        std::uniform_int_distribution<int> coordinate(-nSteps, nSteps);
        const int nX = coordinate(random);
        const int nY = coordinate(random);
        EClick nExpected = CLICK_NONE;
        if (2 * std::abs(nX) < nSteps && 2 * std::abs(nY) < nSteps) {
            nExpected = CLICK_CENTER;
        } else if (std::abs(nX) > std::abs(nY) && 2 * std::abs(nX) > nSteps) {
            nExpected = nX > 0 ? CLICK_RIGHT : CLICK_LEFT;
        } else if (std::abs(nY) > std::abs(nX) && 2 * std::abs(nY) > nSteps) {
            nExpected = nY > 0 ? CLICK_TOP : CLICK_BOTTOM;
        }
        ASSERT_EQ(Click(static_cast<float>(nX) / static_cast<float>(nSteps),
                        static_cast<float>(nY) / static_cast<float>(nSteps)),
                  nExpected)
            << nX << ", " << nY << " of " << nSteps;
        ++counts[nExpected];
    }
    EXPECT_EQ(counts.size(), 6U);
    for (const auto& [nClick, nCount] : counts) {
        EXPECT_GT(nCount, 20) << nClick;
    }
}

} // namespace
