#pragma once

#include "vek/Api.h"

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

class VEK_API VEKParamGroup {
public:
    VEKParamGroup();
    virtual ~VEKParamGroup();

    GUID ID;
    CString Name, Caption;
    CList<VEKParam*> Params;
};

class VEK_API VEKGraphNode {
public:
    CString& GetName();

    CList<VEKParamGroup*> Groups[2]; // inputs, outputs
};

VEK_API BOOL SetParamValue(VEKParam* pParam, float fValue, float fMin, float fMax, float fStep);
VEK_API BOOL SetParamBoolValue(VEKParam* pParam, BOOL b1, BOOL b2, BOOL b3, BOOL b4);
VEK_API VEKParam* FindParam(CList<VEKParamGroup*>& lstGroup, GUID id);
VEK_API VEKParam* FindParam(VEKParamGroup* pGroup, GUID id);
VEK_API VEKParamGroup* FindGroup(CList<VEKParamGroup*>& lstGroup, GUID id);
