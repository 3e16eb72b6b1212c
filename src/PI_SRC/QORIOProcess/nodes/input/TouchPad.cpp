#include "nodes/input/TouchPad.h"

#include <cmath>

namespace {

constexpr float CENTER_HALF_WIDTH = 0.5f;

} // namespace

TouchPadZone ClassifyTouchPad(float fX, float fY) {
    const float fAbsX = std::fabs(fX);
    const float fAbsY = std::fabs(fY);
    if (fX > CENTER_HALF_WIDTH && fX > fAbsY) {
        return TouchPadZone::Right;
    }
    if (fX < -CENTER_HALF_WIDTH && fAbsX > fAbsY) {
        return TouchPadZone::Left;
    }
    if (fY > CENTER_HALF_WIDTH && fY > fAbsX) {
        return TouchPadZone::Top;
    }
    if (fY < -CENTER_HALF_WIDTH && fAbsY > fAbsX) {
        return TouchPadZone::Bottom;
    }
    if (fAbsX < CENTER_HALF_WIDTH && fAbsY < CENTER_HALF_WIDTH) {
        return TouchPadZone::Center;
    }
    return TouchPadZone::None;
}
