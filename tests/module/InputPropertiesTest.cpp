// What holds of any stroke, any place on the touch-pad and any keys. Each run tries others and prints the seed of them:
// with it in the environment, as in RC_PARAMS="seed=123", a property that failed fails again.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include <rapidcheck.h>

#include "ModuleHost.h"
#include "TestMachine.h"

namespace {

template <typename Property>
void ExpectAlways(Property property) {
    EXPECT_TRUE(rc::check(property));
}

// ---- Places and their images ---------------------------------------------------------------------------------------

/// Whole numbers, y growing upwards.
using Place = std::pair<int, int>;

Place operator+(const Place& a, const Place& b) {
    return {a.first + b.first, a.second + b.second};
}

/// In either direction on both axes, so far at most.
rc::Gen<Place> PlaceWithin(int nReach) {
    return rc::gen::pair(rc::gen::inRange(-nReach, nReach + 1), rc::gen::inRange(-nReach, nReach + 1));
}

/// Of strokes and touch-pads alike; what else comes of them is the same in all images.
enum Direction : int { LEFT, RIGHT, UP, DOWN, NOTHING = 99 };

struct Image {
    const char* pszName;
    Place (*pMirror)(Place);
    std::array<int, 4> directions; ///< what comes of LEFT, RIGHT, UP, DOWN

    int Mirror(int nDirection) const {
        return nDirection >= LEFT && nDirection <= DOWN ? directions.at(static_cast<size_t>(nDirection)) : nDirection;
    }
};

const Image IMAGES[] = {
    {"left for right", [](Place place) { return Place(-place.first, place.second); }, {RIGHT, LEFT, UP, DOWN}},
    {"up for down", [](Place place) { return Place(place.first, -place.second); }, {LEFT, RIGHT, DOWN, UP}},
    {"rows for columns", [](Place place) { return Place(place.second, place.first); }, {DOWN, UP, RIGHT, LEFT}}};

class InputProperties : public ModuleTest {
protected:
    /// The output that was fired behind so many others, reckoned from that of LEFT.
    int TakeDirection(size_t nOthers, int nLeft) {
        const std::vector<int> outputs = m_host.TakeFiredOutputs();
        RC_ASSERT(outputs.size() == nOthers || outputs.size() == nOthers + 1);
        return outputs.size() > nOthers ? outputs.back() - nLeft : NOTHING;
    }
};

// ---- Strokes -------------------------------------------------------------------------------------------------------

using Stroke = std::array<Place, 3>;

/// Short and long ones. They may turn anywhere, but most go on as they began, or nearly so.
Stroke AnyStroke() {
    const int nReach = *rc::gen::element(3, 100, 10'000);
    const Place first = *PlaceWithin(nReach);
    const Place step = *PlaceWithin(nReach);
    const Place turn = *rc::gen::oneOf(PlaceWithin(nReach), PlaceWithin(1));
    return {first, first + step, first + step + step + turn};
}

/// Rows and columns are alike, but for diagonals.
bool HasDiagonal(const Stroke& stroke) {
    const auto IsDiagonal = [](const Place& a, const Place& b) {
        return a != b && std::abs(a.first - b.first) == std::abs(a.second - b.second);
    };
    return IsDiagonal(stroke[0], stroke[1]) || IsDiagonal(stroke[1], stroke[2]);
}

class StrokeProperties : public InputProperties {
protected:
    StrokeProperties() { m_scene.Evaluate(); }

    /// The direction of the swipe that a drag with these key points ends with.
    int SwipeOf(const Stroke& stroke, bool bRelative) {
        const auto Send = [&](int nEvent, const Place& place) {
            // 64 steps are a unit, so that differences of units are exact.
            SQORMouseData sample(0, static_cast<float>(place.first) / 64, static_cast<float>(place.second) / 64,
                                 CPoint(place.first, -place.second), bRelative ? 1 : 0);
            RC_ASSERT(m_scene.Send(1, nEvent, &sample) == 1);
        };
        const Place away = stroke[0] + Place(64 * 50, 0); // far enough for a drag
        Send(3005, stroke[0]);
        Send(3013, away);
        Send(3013, stroke[1]);
        Send(3013, away);
        Send(3006, stroke[2]);
        return TakeDirection(2, 754);
    }

    void CheckImages(bool bRelative) {
        int nSwipes = 0;
        ExpectAlways([&] {
            const Stroke stroke = AnyStroke();
            const int nSwipe = SwipeOf(stroke, bRelative);
            nSwipes += nSwipe != NOTHING ? 1 : 0;
            const Place shift = *PlaceWithin(100'000);
            RC_ASSERT(SwipeOf({stroke[0] + shift, stroke[1] + shift, stroke[2] + shift}, bRelative) == nSwipe);
            for (const Image& image : IMAGES) {
                RC_LOG(image.pszName);
                Stroke mirrored;
                std::ranges::transform(stroke, mirrored.begin(), image.pMirror);
                if (image.pMirror(Place(1, 0)) != Place(0, 1) || !HasDiagonal(stroke)) {
                    RC_ASSERT(SwipeOf(mirrored, bRelative) == image.Mirror(nSwipe));
                }
            }
        });
        EXPECT_GT(nSwipes, 0);
    }

    NodeScene m_scene{m_host, TYPE_GESTURE};
};

TEST_F(StrokeProperties, ImagesOfPixelStrokesEndWithTheImageOfTheirSwipe) {
    CheckImages(false);
}

TEST_F(StrokeProperties, ImagesOfRelativeStrokesEndWithTheImageOfTheirSwipe) {
    CheckImages(true);
}

// ---- Touch-pad -----------------------------------------------------------------------------------------------------

class TouchPadProperties : public InputProperties {
protected:
    TouchPadProperties() { m_scene.Evaluate(); }

    /// What a release there clicks.
    int ClickAt(const Place& place, int nSteps) {
        SVRPluginData sample;
        sample.m_fTouchPadX = static_cast<float>(place.first) / static_cast<float>(nSteps);
        sample.m_fTouchPadY = static_cast<float>(place.second) / static_cast<float>(nSteps);
        for (const int bPressed : {1, 0}) {
            sample.m_bTouchPadPressed = bPressed;
            RC_ASSERT(m_scene.Send(3, 1, &sample) == 1);
        }
        return TakeDirection(2, 868);
    }

    NodeScene m_scene{m_host, TYPE_VR_HANDLE};
};

TEST_F(TouchPadProperties, ImagesOfPlacesClickTheImageOfTheirZone) {
    ExpectAlways([&] {
        // A coarse grid often meets borders and diagonals.
        const int nSteps = *rc::gen::element(8, 1 << 20);
        const Place place = *PlaceWithin(nSteps);
        const int nClick = ClickAt(place, nSteps);
        for (const Image& image : IMAGES) {
            RC_LOG(image.pszName);
            RC_ASSERT(ClickAt(image.pMirror(place), nSteps) == image.Mirror(nClick));
        }
    });
}

// ---- Text field ----------------------------------------------------------------------------------------------------

struct Key {
    const wchar_t* pszName;
    /// What it appends while Caps Lock is off, toggled on, held, or both.
    std::array<const wchar_t*, 4> typed;
};

const Key KEYS[] = {{L"q", {L"q", L"Q", L"Q", L"Q"}},
                    {L"Q", {L"q", L"Q", L"Q", L"Q"}},
                    {L"Shift+q", {L"Q", L"Q", L"q", L"q"}},
                    {L"5", {L"5", L"5", L"5", L"5"}},
                    {L"Shift+5", {L"%", L"%", L"%", L"%"}},
                    {L"Num 5", {L"5", L"5", L"5", L"5"}},
                    {L"Num Del", {L".", L".", L".", L"."}},
                    {L"Num Lock", {L"", L"", L"", L""}},
                    {L"Space", {L" ", L" ", L" ", L" "}},
                    {L"Enter", {L"Enter", L"Enter", L"Enter", L"Enter"}},
                    {L"中文", {L"中文", L"中文", L"中文", L"中文"}}};

TEST_F(InputProperties, TextIsWhatItsKeysMadeOfItOneByOne) {
    const int BACKSPACE = std::size(KEYS);
    const int CLEAR = BACKSPACE + 1;
    const int NO_KEY = BACKSPACE + 2;
    TestKeyboard keyboard;
    ExpectAlways([&] {
        NodeScene scene(m_host, TYPE_TEXT_FIELD);
        VEKParam& keyName = scene.AddGraphInput(202, 1, 6);
        VEKParam& input = scene.AddGraphInput(203, 26, 7);
        VEKParam& clear = scene.AddGraphInput(204, 26, 7);
        std::wstring text;
        // Keys with the states of Caps Lock.
        const auto strokes = *rc::gen::container<std::vector<std::pair<int, int>>>(
            rc::gen::pair(rc::gen::inRange(0, NO_KEY + 1), rc::gen::inRange(0, 4)));
        for (const auto& [nKey, nCapsLock] : strokes) {
            keyboard.ReleaseAll();
            keyboard.Toggle(VK_CAPITAL, nCapsLock % 2 != 0);
            if (nCapsLock >= 2) {
                keyboard.Hold(VK_CAPITAL);
            }
            keyName.m_strValue = nKey < BACKSPACE ? KEYS[nKey].pszName : L"Backspace";
            input.m_nValue = nKey <= BACKSPACE ? 1 : 0;
            clear.m_nValue = nKey == CLEAR ? 1 : 0;
            RC_ASSERT(scene.Evaluate() == 1);
            if (nKey < BACKSPACE) {
                text += KEYS[nKey].typed.at(static_cast<size_t>(nCapsLock));
            } else if (nKey == BACKSPACE) {
                text.resize(text.empty() ? 0 : text.size() - 1);
            } else if (nKey == CLEAR) {
                text.clear();
            }
            RC_ASSERT(Utf8(scene.Output(253).m_strValue) == Utf8(text.c_str()));
            RC_ASSERT(scene.Output(252).m_nValue == (text.empty() ? 0 : 1));
        }
    });
}

} // namespace
