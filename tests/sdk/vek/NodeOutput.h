#pragma once

#include "vek/ParamTypes.h"

#include "host/ParamModel.h"

class VEK_API SQORNodeOutput : public VEKParam {
public:
    SQORNodeOutput(UINT nID, CString strName, CString strCaption, EVEKParamType eType, EVEKParamControl eControl);

    LPVOID HostData;
};
