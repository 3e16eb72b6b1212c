#pragma once

#include "vek/Api.h"

#include "host/Clip.h"
#include "host/NodeBase.h"

VEK_API VEKParam* QORFindParamByGuid(GUID id, CList<VEKParamGroup*>& lstInput, CList<VEKParamGroup*>& lstOwn);
VEK_API void PostGeneralEventMessage(VEKProperty* pNode, VEKClip* pClip, VEKObject* pObject, int nOutput);
VEK_API CString G_GetModulePath();
VEK_API CString QORIntToStr(int nValue);
