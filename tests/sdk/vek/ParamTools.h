#pragma once

#include "vek/ParamGroup.h"

VEK_API BOOL SetParamValue(VEKParam* pParam, float fValue, float fMin, float fMax, float fStep);
VEK_API BOOL SetParamBoolValue(VEKParam* pParam, BOOL b1, BOOL b2, BOOL b3, BOOL b4);
VEK_API VEKParam* FindParam(CList<VEKParamGroup*>& lstGroup, GUID id);
VEK_API VEKParam* FindParam(VEKParamGroup* pGroup, GUID id);
VEK_API VEKParamGroup* FindGroup(CList<VEKParamGroup*>& lstGroup, GUID id);
