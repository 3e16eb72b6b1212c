#pragma once

#include "vek/ParamGroup.h"

class VEK_API VEKGraphNode {
public:
    CString& GetName();

    CList<VEKParamGroup*> Groups[2]; // inputs, outputs
};
