// Points.
#pragma once

#include <windows.h>

class CPoint {
public:
    CPoint() noexcept = default;
    CPoint(int nX, int nY) noexcept : x(nX), y(nY) {}

    bool operator==(const CPoint& point) const noexcept { return x == point.x && y == point.y; }

    LONG x = 0;
    LONG y = 0;
};
