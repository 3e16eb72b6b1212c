#pragma once

#include "vek/Api.h"

#include "host/ControlLayout.h"
#include "host/EventRecord.h"
#include "host/ParamModel.h"

class VEKClip;

class VEK_API BaseStruct {
public:
    virtual int GetLowVersion();
    virtual int GetReleaseVersion();
    virtual void SetLowVersion(int nVersion);
    virtual void SetReleaseVersion(int nVersion);
    virtual ~BaseStruct();
};

class VEK_API VEKProperty : public BaseStruct, public SParamGrpPosAdjust {
public:
    VEKProperty();

    virtual void Empty();
    virtual BOOL Init();
    virtual void InitParam();
    virtual void ApplyFromParam();
    virtual void ApplyToParam();
    virtual BOOL NeedUpdateSingleParam(const GUID& id);
    virtual int UpdateSingleParamValue(const GUID& id);
    virtual BOOL IsParamTypeChangeable(GUID id);
    virtual BOOL NeedPIGetNodeInput();
    virtual void GetNodeInput(VEKGraphNode* pNode);
    virtual void GetNodeOutput(VEKGraphNode* pNode);
    virtual int ProcessNode(VEKGraphNode* pNode);
    virtual int GetSubTypes(CStringArray& arName);
    virtual void SetSubType(CString strName); // this compiler puts the later one first into the table
    virtual void SetSubType(int nIndex);
    virtual int GetSubType();
    virtual VEKClip* GetNodeRefClip();
    virtual double GetEventDuration(int nEvent);
    virtual BOOL SeekEventBegin(int nEvent);
    virtual BOOL PlayIn();
    virtual BOOL PlayNext();
    virtual BOOL PlayByIndex(int nIndex);
    virtual BOOL PlayOut();
    virtual void GetPlayIndexAndTotalCount(int* pIndex, int* pCount);
    virtual void StopPiThread();
    virtual void ClearOutPutData();
    virtual CString GetTypeName();
    virtual CString GetOutputEventName(int nOutput);
    virtual bool IsInputMulParams();
    virtual bool IsOutputMulParams();
    virtual int GetFixedMulParams();
    virtual VEKParamGroup* GetSave40ParamGrp();
    virtual UINT GetIDFromGrp(VEKParamGroup* pGroup);
    virtual void ChangeVectorParam(int nCount);
    virtual void ChangeNodeVectorParam(VEKGraphNode* pNode, int nCount);
    virtual void DealWithChangeVectorParam(VEKGraphNode* pNode);
    virtual GUID CalVectorParamGuid(GUID id, int nIndex);
    virtual int CalVectorParamIndex(GUID id);
    virtual BOOL IsParamGroupByGUID(GUID id);
    virtual void DoParamInit();
    virtual void PreRender();
    virtual void StoreParameters();
    virtual void RestoreParameters();

    CList<VEKParamGroup*>& GetGroups();

    struct SMessageTarget {
        HWND Window;
        UINT Message;
    };

    CString Names[2];
    DWORD Kind;
    GUID TypeID;
    SMessageTarget EventTarget, PanelTarget;
    VEKClip* Clip;
};

class VEK_API P_ExtDevIOProcess : public VEKProperty {
public:
    P_ExtDevIOProcess();

    virtual int DevIOEventOccurred(VEKIOEvent* pEvent);

    VEKGraphNode* GraphNode;
};
