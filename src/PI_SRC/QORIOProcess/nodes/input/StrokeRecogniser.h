// Recognises the direction of a stroke from its key points.
#pragma once

#include <span>

#include <afxwin.h>
#include <gdiplus.h>

/// Direction of a stroke on the screen.
enum EGestureType : int {
    GESTURE_NONE = -1,
    GESTURE_LEFT = 0,
    GESTURE_RIGHT = 1,
    GESTURE_UP = 2,
    GESTURE_DOWN = 3,
};

/// Distance from the first to the last sample, on either axis, at which a stroke becomes a drag: pixels or relative
/// units alike.
inline constexpr int MOVE_THRESHOLD = 50;

/// Whether the last sample lies far enough from the first one.
bool HasStartedMoving(const CPoint& first, const CPoint& last);
bool HasStartedMoving(const Gdiplus::PointF& first, const Gdiplus::PointF& last);

/// Direction of a stroke: all its segments point the same way, and the whole stroke deviates from that axis by less
/// than 30 degrees. Pixels' y grows downwards; arithmetic is that of wrapping 32-bit integers.
EGestureType ClassifyPixelStroke(std::span<const CPoint> points);

/// The same in relative units, whose y grows upwards; arithmetic is that of 32-bit floats.
EGestureType ClassifyRelativeStroke(std::span<const Gdiplus::PointF> points);
