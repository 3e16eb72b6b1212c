// What comes of any stroke. Each run tries others and prints the seed of them: with it in the
// environment, as in RC_PARAMS="seed=123", a property that failed fails again.
#include <cstdlib>
#include <utility>
#include <vector>

#include <rapidcheck.h>

#include "ModuleHost.h"

namespace {

template <typename Property>
void ExpectAlways(Property property) {
    EXPECT_TRUE(rc::check(property));
}

using InputProperties = ModuleTest;

enum Output : int { START_MOVE = 752, END_MOVE = 753, LEFT = 754, RIGHT = 755, UP = 756, DOWN = 757, NONE = 0 };

/// Whole numbers, y growing upwards.
using Place = std::pair<int, int>;

Place operator+(const Place& a, const Place& b) {
    return {a.first + b.first, a.second + b.second};
}

/// In either direction on both axes, so far at most.
rc::Gen<Place> PlaceWithin(int nReach) {
    return rc::gen::pair(rc::gen::inRange(-nReach, nReach + 1), rc::gen::inRange(-nReach, nReach + 1));
}

/// Diagonals count as vertical.
int DirectionOf(const Place& step) {
    if (step == Place()) {
        return NONE;
    }
    if (std::abs(step.second) >= std::abs(step.first)) {
        return step.second > 0 ? UP : DOWN;
    }
    return step.first > 0 ? RIGHT : LEFT;
}

/// Both steps go in one direction or one of them nowhere, and the whole deviates from it by less than 30 degrees, whose
/// cosine is the root of three quarters.
int SwipeOf(const Place& step, const Place& next) {
    const int nDirection = step == Place() ? DirectionOf(next) : DirectionOf(step);
    if (nDirection == NONE || (next != Place() && DirectionOf(next) != nDirection)) {
        return NONE;
    }
    const auto [nX, nY] = step + next;
    const int nAlong = nDirection == LEFT || nDirection == RIGHT ? nX : nY;
    return 4 * nAlong * nAlong > 3 * (nX * nX + nY * nY) ? nDirection : NONE;
}

TEST_F(InputProperties, StrokesEndWithTheSwipeOfTheirKeyPoints) {
    NodeScene scene(m_host, TYPE_GESTURE);
    scene.Evaluate();
    int nSwipes = 0;
    ExpectAlways([&] {
        const bool bRelative = *rc::gen::arbitrary<bool>();
        const auto Send = [&](int nEvent, const Place& place) {
            // 64 steps are a unit, so that differences of units are exact.
            SQORMouseData sample(0, static_cast<float>(place.first) / 64, static_cast<float>(place.second) / 64,
                                 CPoint(place.first, -place.second), bRelative ? 1 : 0);
            RC_ASSERT(scene.Send(1, nEvent, &sample) == 1);
        };
        // Short and long ones. They may turn anywhere, but most go on as they began, or nearly so.
        const int nReach = *rc::gen::element(3, 100);
        const Place first = *PlaceWithin(100'000);
        const Place step = *PlaceWithin(nReach);
        const Place next = *rc::gen::oneOf(
            PlaceWithin(nReach), rc::gen::map(PlaceWithin(1), [&](const Place& turn) { return step + turn; }));
        const Place away = first + Place(64 * 50, 0); // far enough for a drag
        Send(3005, first);
        Send(3013, away);
        Send(3013, first + step);
        Send(3013, away);
        Send(3006, first + step + next);
        std::vector<int> expected = {START_MOVE, END_MOVE};
        if (const int nSwipe = SwipeOf(step, next); nSwipe != NONE) {
            expected.push_back(nSwipe);
            ++nSwipes;
        }
        RC_ASSERT(m_host.TakeFiredOutputs() == expected);
    });
    EXPECT_GT(nSwipes, 0);
}

} // namespace
