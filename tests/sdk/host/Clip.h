#pragma once

#include "vek/Api.h"

#include "host/ParamModel.h"

class VEK_API VEKObject {
public:
    virtual ~VEKObject();

    CString ObjectName;
    float World[4][4];
};

class VEK_API SClipRefNodeInfo {
public:
    BOOL UpdateNodeByProperty(VEKGraphNode* pNode);
};

class VEK_API VEKClip {
public:
    virtual ~VEKClip();

    VEKObject* GetObjectByName(CString strName);
    CString& GetClipName();

    SClipRefNodeInfo* RefNode;
};
