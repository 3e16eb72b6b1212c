#include "nodes/input/TouchPad.h"

#include <cmath>

ETouchPadClick ClassifyTouchPad(float fX, float fY) {
    constexpr float BORDER = 0.5f;
    const float fAbsX = std::fabs(fX);
    const float fAbsY = std::fabs(fY);
    if (fX > BORDER && fX > fAbsY) {
        return CLICK_RIGHT;
    }
    if (fX < -BORDER && fAbsX > fAbsY) {
        return CLICK_LEFT;
    }
    if (fY > BORDER && fY > fAbsX) {
        return CLICK_TOP;
    }
    if (fY < -BORDER && fAbsY > fAbsX) {
        return CLICK_BOTTOM;
    }
    return fAbsX < BORDER && fAbsY < BORDER ? CLICK_CENTER : CLICK_NONE;
}
