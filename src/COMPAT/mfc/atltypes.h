// Points, sizes and rectangles over the system's structures, without anything added to their layout.
#pragma once

#include <windows.h>

class CSize : public tagSIZE {
public:
    CSize() noexcept : tagSIZE{0, 0} {}
    CSize(int nCx, int nCy) noexcept : tagSIZE{nCx, nCy} {}
    CSize(SIZE size) noexcept : tagSIZE(size) {} // NOLINT: converts as the framework's does

    bool operator==(SIZE size) const noexcept { return cx == size.cx && cy == size.cy; }
    bool operator!=(SIZE size) const noexcept { return !(*this == size); }
};

class CPoint : public tagPOINT {
public:
    CPoint() noexcept : tagPOINT{0, 0} {}
    CPoint(int nX, int nY) noexcept : tagPOINT{nX, nY} {}
    CPoint(POINT point) noexcept : tagPOINT(point) {} // NOLINT: converts as the framework's does

    void SetPoint(int nX, int nY) noexcept {
        x = nX;
        y = nY;
    }
    void Offset(int nX, int nY) noexcept {
        x += nX;
        y += nY;
    }
    bool operator==(POINT point) const noexcept { return x == point.x && y == point.y; }
    bool operator!=(POINT point) const noexcept { return !(*this == point); }
    void operator+=(SIZE size) noexcept { Offset(size.cx, size.cy); }
    void operator-=(SIZE size) noexcept { Offset(-size.cx, -size.cy); }
    CPoint operator+(SIZE size) const noexcept { return CPoint(x + size.cx, y + size.cy); }
    CPoint operator-(SIZE size) const noexcept { return CPoint(x - size.cx, y - size.cy); }
    CPoint operator+(POINT point) const noexcept { return CPoint(x + point.x, y + point.y); }
    CSize operator-(POINT point) const noexcept { return CSize(x - point.x, y - point.y); }
};

// Right and bottom edge do not belong to the rectangle.
class CRect : public tagRECT {
public:
    CRect() noexcept : tagRECT{0, 0, 0, 0} {}
    CRect(int nLeft, int nTop, int nRight, int nBottom) noexcept : tagRECT{nLeft, nTop, nRight, nBottom} {}
    CRect(const RECT& rect) noexcept : tagRECT(rect) {} // NOLINT: converts as the framework's does
    CRect(POINT point, SIZE size) noexcept : tagRECT{point.x, point.y, point.x + size.cx, point.y + size.cy} {}

    int Width() const noexcept { return right - left; }
    int Height() const noexcept { return bottom - top; }
    CSize Size() const noexcept { return CSize(Width(), Height()); }
    CPoint TopLeft() const noexcept { return CPoint(left, top); }
    CPoint BottomRight() const noexcept { return CPoint(right, bottom); }
    CPoint CenterPoint() const noexcept { return CPoint((left + right) / 2, (top + bottom) / 2); }
    bool IsRectEmpty() const noexcept { return right <= left || bottom <= top; }
    void SetRectEmpty() noexcept { left = top = right = bottom = 0; }
    bool PtInRect(POINT point) const noexcept {
        return point.x >= left && point.x < right && point.y >= top && point.y < bottom;
    }
    bool operator==(const RECT& rect) const noexcept {
        return left == rect.left && top == rect.top && right == rect.right && bottom == rect.bottom;
    }
    bool operator!=(const RECT& rect) const noexcept { return !(*this == rect); }
};
