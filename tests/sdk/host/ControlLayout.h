#pragma once

#include "vek/Api.h"

class VEK_API SNodeParamInfoGrp {
public:
    ~SNodeParamInfoGrp();
};

class VEK_API CVEKXml {
public:
    CVEKXml();
    virtual ~CVEKXml();
};

class VEK_API SParamGrpPosAdjust {
public:
    virtual CVEKXml* GetXmlReader();
    virtual int* GetXmlLoadStatePtr();
    virtual BOOL ShouldReCalHeight();
    virtual CString GetCtrlPosXmlPath();
    virtual CArray<SNodeParamInfoGrp*>* GetNodeParamInfoGrpAr();

    BOOL FillNodeParamInfoGrpAr(CArray<SNodeParamInfoGrp*>* pGroups, BOOL bReload);
};
