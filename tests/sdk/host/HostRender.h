#pragma once

#include "vek/Api.h"

#include "host/Clip.h"
#include "host/NodeBase.h"
#include "host/ParamModel.h"

class VEK_API SQORNodeOutput : public VEKParam {
public:
    SQORNodeOutput(UINT nID, CString strName, CString strCaption, EVEKParamType eType, EVEKParamControl eControl);

    LPVOID HostData;
};

VEK_API VEKParam* QORFindParamByGuid(GUID id, CList<VEKParamGroup*>& lstInput, CList<VEKParamGroup*>& lstOwn);
VEK_API void PostGeneralEventMessage(VEKProperty* pNode, VEKClip* pClip, VEKObject* pObject, int nOutput);
VEK_API CString G_GetModulePath();
VEK_API CString QORIntToStr(int nValue);
