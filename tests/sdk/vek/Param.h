#pragma once

#include "vek/ParamTypes.h"

class VEK_API VEKParam {
public:
    VEKParam(UINT nID, CString strName, CString strCaption, EVEKParamType eType, EVEKParamControl eControl);
    virtual ~VEKParam();

    CStringArray& GetChoices();

    union {
        int Int;
        LPVOID Pointer;
    } Value;
    float FloatValue;
    CString Text;
    TCHAR PointeeType[128];
    bool Visible;
};
