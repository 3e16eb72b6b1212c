// Points.
#pragma once

#include <windows.h>

class CPoint {
public:
    CPoint() noexcept = default;
    CPoint(int nX, int nY) noexcept : x(nX), y(nY) {}

    LONG x = 0;
    LONG y = 0;
};
