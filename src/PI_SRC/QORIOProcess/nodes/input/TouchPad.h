// The touch-pad of a VR controller.
#pragma once

/// What releasing the touch-pad clicks, as the id of the VR handle node's output.
enum ETouchPadClick : int {
    CLICK_NONE = 0,
    CLICK_CENTER = 867,
    CLICK_LEFT = 868,
    CLICK_RIGHT = 869,
    CLICK_TOP = 870,
    CLICK_BOTTOM = 871,
};

/// The click of a thumb position (about -1 to 1 on both axes, y growing upwards). A position exactly on the border of
/// two zones clicks nothing.
ETouchPadClick ClassifyTouchPad(float fX, float fY);
