#include "nodes/input/StrokeRecogniser.h"

#include <cmath>

namespace {

/// 30 degrees. A little above pi / 6 and the float nearest to it, so that a deviation that rounds to that float is
/// below.
constexpr double MAXIMUM_DEVIATION = 0.5235987912027583;

/// A 32-bit integer whose arithmetic wraps as two's complement does.
struct WrappingInt {
    unsigned nBits;

    int Value() const { return static_cast<int>(nBits); }
    friend WrappingInt operator-(WrappingInt a, WrappingInt b) { return {a.nBits - b.nBits}; }
    friend WrappingInt operator+(WrappingInt a, WrappingInt b) { return {a.nBits + b.nBits}; }
    friend WrappingInt operator*(WrappingInt a, WrappingInt b) { return {a.nBits * b.nBits}; }
};

WrappingInt Wrap(LONG nValue) {
    return {static_cast<unsigned>(nValue)};
}

/// The magnitude; that of the lowest integer is itself.
int Magnitude(WrappingInt n) {
    return n.Value() < 0 ? (WrappingInt{0} - n).Value() : n.Value();
}

struct PixelPoints {
    using Point = CPoint;

    struct Vector {
        WrappingInt x;
        WrappingInt y;
    };

    static Vector Difference(const Point& a, const Point& b) { return {Wrap(b.x) - Wrap(a.x), Wrap(b.y) - Wrap(a.y)}; }
    static bool Differ(const Point& a, const Point& b) { return a.x != b.x || a.y != b.y; }
    static int X(const Vector& v) { return v.x.Value(); }
    static int Downward(const Vector& v) { return v.y.Value(); }
    static int AbsX(const Vector& v) { return Magnitude(v.x); }
    static int AbsY(const Vector& v) { return Magnitude(v.y); }

    /// Angle between the vector and the axis that it covers nAlong of.
    static float Deviation(const Vector& v, int nAlong) {
        const double fSquares = (v.x * v.x + v.y * v.y).Value();
        return static_cast<float>(std::acos(nAlong / std::sqrt(fSquares)));
    }
};

struct RelativePoints {
    using Point = Gdiplus::PointF;
    using Vector = Gdiplus::PointF;

    static Vector Difference(const Point& a, const Point& b) { return Vector(b.X - a.X, b.Y - a.Y); }
    static bool Differ(const Point& a, const Point& b) { return a.X != b.X || a.Y != b.Y; }
    static float X(const Vector& v) { return v.X; }
    static float Downward(const Vector& v) { return -v.Y; }
    static float AbsX(const Vector& v) { return std::fabs(v.X); }
    static float AbsY(const Vector& v) { return std::fabs(v.Y); }

    static float Deviation(const Vector& v, float fAlong) {
        return std::acos(fAlong / std::sqrt(v.X * v.X + v.Y * v.Y));
    }
};

/// Direction of one segment; a diagonal counts as vertical.
template <typename Kind>
EGestureType SegmentDirection(const typename Kind::Vector& v) {
    if (Kind::Downward(v) >= 0 && Kind::AbsY(v) >= Kind::AbsX(v)) {
        return GESTURE_DOWN;
    }
    if (Kind::Downward(v) <= 0 && Kind::AbsY(v) >= Kind::AbsX(v)) {
        return GESTURE_UP;
    }
    if (Kind::X(v) >= 0 && Kind::AbsY(v) <= Kind::AbsX(v)) {
        return GESTURE_RIGHT;
    }
    if (Kind::X(v) <= 0 && Kind::AbsY(v) <= Kind::AbsX(v)) {
        return GESTURE_LEFT;
    }
    return GESTURE_NONE; // coordinates that aren't numbers
}

template <typename Kind>
EGestureType ClassifyStroke(std::span<const typename Kind::Point> points) {
    if (points.size() < 2) {
        return GESTURE_NONE;
    }
    EGestureType nDirection = GESTURE_NONE;
    for (size_t i = 1; i < points.size(); ++i) {
        if (!Kind::Differ(points[i - 1], points[i])) {
            continue;
        }
        const EGestureType nSegment = SegmentDirection<Kind>(Kind::Difference(points[i - 1], points[i]));
        if (nSegment == GESTURE_NONE) {
            continue;
        }
        if (nDirection != GESTURE_NONE && nSegment != nDirection) {
            return GESTURE_NONE;
        }
        nDirection = nSegment;
    }
    if (nDirection == GESTURE_NONE || !Kind::Differ(points.front(), points.back())) {
        return GESTURE_NONE;
    }
    const auto whole = Kind::Difference(points.front(), points.back());
    const bool bHorizontal = nDirection == GESTURE_LEFT || nDirection == GESTURE_RIGHT;
    const float fDeviation = Kind::Deviation(whole, bHorizontal ? Kind::AbsX(whole) : Kind::AbsY(whole));
    return static_cast<double>(fDeviation) < MAXIMUM_DEVIATION ? nDirection : GESTURE_NONE;
}

} // namespace

bool HasStartedMoving(const CArray<CPoint>& arPoint) {
    if (arPoint.GetSize() < 2) {
        return false;
    }
    const auto v = PixelPoints::Difference(arPoint[0], arPoint[arPoint.GetUpperBound()]);
    return PixelPoints::AbsX(v) >= MOVE_THRESHOLD || PixelPoints::AbsY(v) >= MOVE_THRESHOLD;
}

bool HasStartedMoving(const CArray<Gdiplus::PointF>& arPoint) {
    if (arPoint.GetSize() < 2) {
        return false;
    }
    const auto v = RelativePoints::Difference(arPoint[0], arPoint[arPoint.GetUpperBound()]);
    return RelativePoints::AbsX(v) >= MOVE_THRESHOLD || RelativePoints::AbsY(v) >= MOVE_THRESHOLD;
}

EGestureType ClassifyPixelStroke(std::span<const CPoint> points) {
    return ClassifyStroke<PixelPoints>(points);
}

EGestureType ClassifyRelativeStroke(std::span<const Gdiplus::PointF> points) {
    return ClassifyStroke<RelativePoints>(points);
}
