#pragma once

#include "vek/AttachedData.h"

class VEK_API SQORMouseData : public CQORIOAttachedData {
public:
    SQORMouseData(int nPointer, float fX, float fY, CPoint pt, int bRelative);

    float Relative[2];
    POINT Pixel;
    DWORD PointerID;
    bool UsesRelative;
};
