// The value type of GDI+ that this project uses. No drawing.
#pragma once

namespace Gdiplus {

class PointF {
public:
    PointF() = default;
    PointF(float x, float y) : X(x), Y(y) {}

    float X = 0.0f;
    float Y = 0.0f;
};

} // namespace Gdiplus
