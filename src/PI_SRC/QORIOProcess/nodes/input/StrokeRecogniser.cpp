#include "nodes/input/StrokeRecogniser.h"

#include <cmath>

namespace {

/// 30 degrees, slightly more than the float nearest to pi / 6, so that an angle of exactly that float is still below.
constexpr double MAXIMUM_DEVIATION = 0.5235987912027583;

/// The difference of 32-bit integers, which wraps.
int Minus(LONG a, LONG b) {
    return static_cast<int>(static_cast<unsigned>(a) - static_cast<unsigned>(b));
}

/// The magnitude; that of the lowest integer is itself.
int Abs(int n) {
    return n < 0 ? Minus(0, n) : n;
}

EGestureType PixelDirection(const CPoint& a, const CPoint& b) {
    const int dx = Minus(b.x, a.x);
    const int dy = Minus(b.y, a.y);
    if (dx == 0 && dy == 0) {
        return GESTURE_NONE;
    }
    if (Abs(dy) >= Abs(dx)) {
        return dy >= 0 ? GESTURE_DOWN : GESTURE_UP;
    }
    return dx >= 0 ? GESTURE_RIGHT : GESTURE_LEFT;
}

EGestureType RelativeDirection(const Gdiplus::PointF& a, const Gdiplus::PointF& b) {
    const float dx = b.X - a.X;
    const float dy = b.Y - a.Y;
    if ((dx == 0 && dy == 0) || std::isnan(dx) || std::isnan(dy)) {
        return GESTURE_NONE;
    }
    if (std::fabs(dy) >= std::fabs(dx)) {
        return dy <= 0 ? GESTURE_DOWN : GESTURE_UP;
    }
    return dx >= 0 ? GESTURE_RIGHT : GESTURE_LEFT;
}

/// The one direction of all segments that have any.
template <typename Point>
EGestureType CommonDirection(std::span<const Point> points, EGestureType (*pDirection)(const Point&, const Point&)) {
    EGestureType nCommon = GESTURE_NONE;
    for (size_t i = 1; i < points.size(); ++i) {
        const EGestureType nDirection = pDirection(points[i - 1], points[i]);
        if (nDirection == GESTURE_NONE || nDirection == nCommon) {
            continue;
        }
        if (nCommon != GESTURE_NONE) {
            return GESTURE_NONE;
        }
        nCommon = nDirection;
    }
    return nCommon;
}

bool IsHorizontal(EGestureType nDirection) {
    return nDirection == GESTURE_LEFT || nDirection == GESTURE_RIGHT;
}

} // namespace

bool HasStartedMoving(const CPoint& first, const CPoint& last) {
    return Abs(Minus(last.x, first.x)) >= MOVE_THRESHOLD || Abs(Minus(last.y, first.y)) >= MOVE_THRESHOLD;
}

bool HasStartedMoving(const Gdiplus::PointF& first, const Gdiplus::PointF& last) {
    return std::fabs(last.X - first.X) >= MOVE_THRESHOLD || std::fabs(last.Y - first.Y) >= MOVE_THRESHOLD;
}

// Where the last point equals the first, or the pixels' sum of squares wraps to 0 or below, the angle is no number, and
// comparing it answers false.

EGestureType ClassifyPixelStroke(std::span<const CPoint> points) {
    const EGestureType nDirection = CommonDirection(points, PixelDirection);
    if (nDirection == GESTURE_NONE) {
        return GESTURE_NONE;
    }
    const auto dx = static_cast<unsigned>(Minus(points.back().x, points.front().x));
    const auto dy = static_cast<unsigned>(Minus(points.back().y, points.front().y));
    const double fAlong = Abs(static_cast<int>(IsHorizontal(nDirection) ? dx : dy));
    const auto fLength = std::sqrt(static_cast<double>(static_cast<int>(dx * dx + dy * dy)));
    return static_cast<float>(std::acos(fAlong / fLength)) < MAXIMUM_DEVIATION ? nDirection : GESTURE_NONE;
}

EGestureType ClassifyRelativeStroke(std::span<const Gdiplus::PointF> points) {
    const EGestureType nDirection = CommonDirection(points, RelativeDirection);
    if (nDirection == GESTURE_NONE) {
        return GESTURE_NONE;
    }
    const float dx = points.back().X - points.front().X;
    const float dy = points.back().Y - points.front().Y;
    const float fAlong = std::fabs(IsHorizontal(nDirection) ? dx : dy);
    return std::acos(fAlong / std::sqrt(dx * dx + dy * dy)) < MAXIMUM_DEVIATION ? nDirection : GESTURE_NONE;
}
