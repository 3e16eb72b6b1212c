// The class tree that every node derives from, and the clip and scene objects that it belongs to.
// The order of the virtual operations is part of the contract: 49 in the main table, 5 in the second one.
#pragma once

#include "ParamModel.h"
#include "VirtualOrder.h"

struct SIOEventRecord;
class CVEKXml;
class VEKClip;

/// Position of one parameter control in a node's panel; pixels from the panel's top left corner.
struct SNodeParamInfo {
    GUID m_guid;
    int m_nX;
    int m_nY;
    int m_nWidth;
    int m_nHeight;
    int m_nLabelWidth;
};

/// Layout of one parameter group in a node's panel.
class VEKCOMMON_API SNodeParamInfoGrp {
public:
    SNodeParamInfoGrp();
    virtual ~SNodeParamInfoGrp();

    GUID m_guid;
    CString m_strName;
    CArray<SNodeParamInfo> m_arParam;
};

using NodeParamInfoGrpArray = CArray<SNodeParamInfoGrp*>;

/// Reader of a control-layout XML file. Holds the parsed document of the file that it last loaded.
class VEKCOMMON_API CVEKXml {
public:
    CVEKXml();
    ~CVEKXml();

    CVEKXml(const CVEKXml&) = delete;
    CVEKXml& operator=(const CVEKXml&) = delete;

    /// Read and parse the file. False when it's missing or isn't well-formed XML; the document is then empty.
    bool Load(const CString& strPath);

    /// Append the layout groups of the document to the array, which then owns them. Does nothing without a document.
    void ReadParamLayout(NodeParamInfoGrpArray& arGroup) const;

private:
    struct SDocument;
    SDocument* m_pDocument; ///< owned; null until Load succeeded
};

/// What GetXmlLoadStatePtr points at: whether the class's layout file was read.
enum EXmlLoadState : int { XML_NOT_LOADED = 0, XML_LOADED = 1, XML_FAILED = 2 };

/// Root: the versions of the project format that an object was written with.
class VEKCOMMON_API BaseStruct {
public:
    BaseStruct();

    virtual int GetLowVersion();     ///< lowest host version that can read the object
    virtual int GetReleaseVersion(); ///< version that wrote the object
    virtual void SetLowVersion(int nVersion);
    virtual void SetReleaseVersion(int nVersion);
    virtual ~BaseStruct();

    BaseStruct(const BaseStruct&) = delete;
    BaseStruct& operator=(const BaseStruct&) = delete;

private:
    int m_nLowVersion = 0;
    int m_nReleaseVersion = 0;
};

/// Supplies the control layout of a node's parameter panel. The defaults are those of a node without a layout file.
class VEKCOMMON_API SParamGrpPosAdjust {
public:
    virtual CVEKXml* GetXmlReader();     ///< reader of the layout file, one per class; null without one
    virtual int* GetXmlLoadStatePtr();   ///< EXmlLoadState of that file; null without one
    virtual BOOL ShouldReCalHeight();    ///< whether the editor computes the panel's height anew
    virtual CString GetCtrlPosXmlPath(); ///< path of the layout file; empty without one
    virtual NodeParamInfoGrpArray* GetNodeParamInfoGrpAr(); ///< the class's layout groups; null without a layout

    /// Fill an empty layout array from the file that the virtual operations name; a missing or broken file leaves it
    /// empty. The array owns the groups.
    void FillNodeParamInfoGrpAr(NodeParamInfoGrpArray& arGroup);

protected:
    ~SParamGrpPosAdjust() = default;
};

/// A node's property object: names, parameter groups, playing interface.
class VEKCOMMON_API VEKProperty : public BaseStruct, public SParamGrpPosAdjust {
public:
    VEKProperty();
    ~VEKProperty() override;

    virtual void Empty();                                 ///< delete all parameter groups
    virtual void Init();                                  ///< once after creation, before the first use
    virtual void InitParam();                             ///< after loading: bring an older parameter set up to date
    virtual void ApplyFromParam();                        ///< take over the parameters' values
    virtual void ApplyToParam();                          ///< write the current values into the parameters
    virtual BOOL NeedUpdateSingleParam(const GUID& guid); ///< whether an edit of this parameter must be reported
    virtual int UpdateSingleParamValue(const GUID& guid); ///< an edit of that parameter; 1 handled
    virtual BOOL IsParamTypeChangeable(const GUID& guid);
    virtual BOOL NeedPIGetNodeInput(); ///< whether the node builds its graph inputs itself
    virtual void GetNodeInput(SGraphNode* pGraphNode);
    virtual void GetNodeOutput(SGraphNode* pGraphNode); ///< add the output groups, once; null does nothing
    virtual int ProcessNode(SGraphNode* pGraphNode);    ///< one evaluation in the graph: 1 handled, 0 nothing done
    virtual void GetSubTypes(CStringArray& arSubType);
    VEK_OVERLOADS_IN_TABLE_ORDER(virtual void SetSubType(int nSubType);, virtual void SetSubType(CString strSubType);)
    virtual int GetSubType();
    virtual VEKClip* GetNodeRefClip();
    virtual float GetEventDuration(int nEvent); ///< seconds
    virtual int SeekEventBegin(int nEvent);
    virtual int PlayIn();
    virtual int PlayNext();
    virtual int PlayByIndex(int nIndex);
    virtual int PlayOut();
    virtual void GetPlayIndexAndTotalCount(int& nIndex, int& nTotal);
    virtual void StopPiThread();
    virtual void ClearOutPutData();
    virtual CString GetTypeName();
    virtual CString GetOutputEventName(int nOutput);
    virtual BOOL IsInputMulParams();
    virtual BOOL IsOutputMulParams();
    virtual int GetFixedMulParams();
    virtual VEKParamGroup* GetSave40ParamGrp(); ///< group written for project format 4.0; null: none
    virtual int GetIDFromGrp(const VEKParamGroup* pGroup);
    virtual void ChangeVectorParam(int nCount);
    virtual void ChangeNodeVectorParam(SGraphNode* pGraphNode, int nCount);
    virtual void DealWithChangeVectorParam(SGraphNode* pGraphNode);
    virtual GUID CalVectorParamGuid(const GUID& guid, int nIndex);
    virtual int CalVectorParamIndex(const GUID& guid);
    virtual BOOL IsParamGroupByGUID(const GUID& guid); ///< whether one of the own groups has this GUID
    virtual void DoParamInit();
    virtual void PreRender();
    virtual void StoreParameters();
    virtual void RestoreParameters();

    CString m_strName;                 ///< the node's name; stands in log lines
    CString m_strSecondName;           ///< second name, beside the first
    int m_nKindCode = 0;               ///< 247 for every IO-process node
    GUID m_guidType;                   ///< node-type GUID
    VEKParamGroupList m_lstParamGroup; ///< own parameter groups; owned
    HWND m_hEventWnd = nullptr;        ///< target of general events; posted only if this and the message aren't 0
    UINT m_nEventMsg = 0;
    HWND m_hNotifyWnd = nullptr; ///< target of "redraw the panel"; posted only if this and the message aren't 0
    UINT m_nNotifyMsg = 0;
    VEKClip* m_pOwnerClip = nullptr; ///< clip that owns the node; not owned; set by the host
};

/// Kind code of every IO-process node.
inline constexpr int KIND_IO_PROCESS = 247;

/// Base of every IO-process node.
class VEKCOMMON_API P_ExtDevIOProcess : public VEKProperty {
public:
    P_ExtDevIOProcess();
    ~P_ExtDevIOProcess() override;

    /// Device input or a network item arrived: 1 when the node consumed it, else 0. The record belongs to the caller.
    virtual int DevIOEventOccurred(const SIOEventRecord* pRecord);

    SGraphNode* m_pBaseGraphNode = nullptr; ///< graph node of the types that keep none of their own; not owned
};
