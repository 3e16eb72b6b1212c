// The value types of GDI+ that this project exchanges. No drawing.
#pragma once

#include <windows.h>

namespace Gdiplus {

typedef float REAL;

class PointF {
public:
    PointF() : X(0.0f), Y(0.0f) {}
    PointF(const PointF& point) = default;
    PointF(REAL x, REAL y) : X(x), Y(y) {}
    PointF& operator=(const PointF& point) = default;

    PointF operator+(const PointF& point) const { return PointF(X + point.X, Y + point.Y); }
    PointF operator-(const PointF& point) const { return PointF(X - point.X, Y - point.Y); }
    // Exact comparison, without tolerance.
    BOOL Equals(const PointF& point) const { return X == point.X && Y == point.Y; }

    REAL X;
    REAL Y;
};

} // namespace Gdiplus
