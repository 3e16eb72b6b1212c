// Zones of a VR controller's touch-pad.
#pragma once

/// Where the thumb was when the touch-pad was released.
enum class TouchPadZone { None, Center, Left, Right, Top, Bottom };

/// The zone of a thumb position (about -1 to 1 on both axes, y growing upwards). The zones are open: a position exactly
/// on a border between two of them lies in none.
TouchPadZone ClassifyTouchPad(float fX, float fY);
