#pragma once

#include "vek/Param.h"

class VEK_API VEKParamGroup {
public:
    VEKParamGroup();
    virtual ~VEKParamGroup();

    GUID ID;
    CString Name, Caption;
    CList<VEKParam*> Params;
};
