// The class tree that every node derives from. The order of the virtual operations is part of the contract: 49 in the
// main table, 5 in the second one.
#pragma once

#include "VirtualOrder.h"

#include "host/ControlLayout.h"
#include "host/EventRecord.h"
#include "host/ParamModel.h"

class VEKClip;

/// Root: the versions of the project format that an object was written with. Both are 0 until they are set.
class VEKCOMMON_API BaseStruct {
public:
    BaseStruct();

    virtual int GetLowVersion();     ///< lowest host version that can read the object
    virtual int GetReleaseVersion(); ///< host version that wrote the object
    /// The host sets them when it loads the object.
    virtual void SetLowVersion(int nVersion);
    virtual void SetReleaseVersion(int nVersion);
    virtual ~BaseStruct();

private:
    int m_nLowVersion = 0;
    int m_nReleaseVersion = 0;
};

/// A node's property object: names, parameter groups, playing interface.
///
/// The host calls the operations, all on the thread that drives the graph. Unless an operation says more, its default
/// does nothing and answers 0 or empty; a node overrides what it needs. Pointers passed in or returned don't transfer
/// ownership; a node keeps none of them after the call but the graph node. No exception leaves an operation but the
/// framework's invalid-argument exception, for what breaks this contract; any other failure answers as "not handled".
class VEKCOMMON_API VEKProperty : public BaseStruct, public SParamGrpPosAdjust {
public:
    VEKProperty();
    ~VEKProperty() override;

    // Life and parameters.
    virtual void Empty();          ///< delete all parameter groups, and the values that StoreParameters kept
    virtual void Init();           ///< once after creation, before the first use
    virtual void InitParam();      ///< after loading: bring an older parameter set up to date
    virtual void ApplyFromParam(); ///< the parameters' values have been changed as a whole: take them over
    virtual void ApplyToParam();   ///< the values are about to be read as a whole: write the current ones into them
    /// Whether an edit of this parameter must be reported at once, by the operation that follows.
    virtual BOOL NeedUpdateSingleParam(const GUID& guid);
    /// The editor changed that parameter: 1 when the node acted on it, else 0.
    virtual int UpdateSingleParamValue(const GUID& guid);
    /// Whether the editor may give that parameter another type; by default none.
    virtual BOOL IsParamTypeChangeable(const GUID& guid);

    // The node's place in the graph.
    /// Whether the node builds its graph inputs itself, in GetNodeInput; else the host makes them of its groups.
    virtual BOOL NeedPIGetNodeInput();
    /// Add the input groups to the graph node, which then owns them; asked only when NeedPIGetNodeInput says so.
    virtual void GetNodeInput(SGraphNode* pGraphNode);
    /// Add the output groups to the graph node, which then owns them, once. Null does nothing.
    virtual void GetNodeOutput(SGraphNode* pGraphNode);
    /// One evaluation in the graph: 1 handled, 0 nothing done. Null tells the node that it has no place any more.
    virtual int ProcessNode(SGraphNode* pGraphNode);

    // Sub types: variants that one node type may offer. By default there are none, and the number is 0.
    /// The names of the sub types, in the order of their numbers, in place of what the array holds.
    virtual void GetSubTypes(CStringArray& arSubType);
    /// The editor chose a sub type, by its number or by its name; an unknown one changes nothing.
    /// (Microsoft's compiler reverses overloads in the table; the macro keeps int first.)
    VEK_OVERLOADS_IN_TABLE_ORDER(virtual void SetSubType(int nSubType);, virtual void SetSubType(CString strSubType);)
    virtual int GetSubType(); ///< number of the chosen sub type

    // Playing: for nodes that refer to a clip or play something step by step. IO-process nodes don't.
    virtual VEKClip* GetNodeRefClip();          ///< the clip that the node refers to, not its owner; null for none
    virtual float GetEventDuration(int nEvent); ///< how long that event of the node plays; seconds
    virtual int SeekEventBegin(int nEvent);     ///< go to where that event begins: 1 when there is such a place, else 0
    /// Begin playing, go on, go to the step of that index (from 0), end: 1 when something played, else 0.
    virtual int PlayIn();
    virtual int PlayNext();
    virtual int PlayByIndex(int nIndex);
    virtual int PlayOut();
    /// The step that plays (from 0) and the number of steps; both are written, 0 and 0 without any.
    virtual void GetPlayIndexAndTotalCount(int& nIndex, int& nTotal);
    virtual void StopPiThread(); ///< end the threads that the node started, before it's taken out of the graph
    /// The graph starts anew: forget what was put out so far. The graph node's pins are the host's to reset.
    virtual void ClearOutPutData();

    // What the editor shows, and how groups are saved.
    virtual CString GetTypeName(); ///< name of the node's type as the editor shows it; by default the node's name
    virtual CString GetOutputEventName(int nOutput); ///< name of the output's event; empty: that of its pin
    /// Whether the number of inputs, or of outputs, is the user's to choose.
    virtual BOOL IsInputMulParams();
    virtual BOOL IsOutputMulParams();
    virtual int GetFixedMulParams();            ///< where it is, the number of parameters at the beginning that stay
    virtual VEKParamGroup* GetSave40ParamGrp(); ///< the node's group to write for project format 4.0; null: none
    virtual int GetIDFromGrp(const VEKParamGroup* pGroup); ///< the small id that its GUID was made of; 0 for null

    // Vector parameters: one parameter that stands for several, whose number can change. By default there are none, so
    // that each parameter is its own and only element.
    virtual void ChangeVectorParam(int nCount); ///< the user chose so many elements: change the own groups
    virtual void ChangeNodeVectorParam(SGraphNode* pGraphNode, int nCount); ///< the same for its inputs and outputs
    /// Both changed: connect the graph node's parameters to the own ones again.
    virtual void DealWithChangeVectorParam(SGraphNode* pGraphNode);
    /// The GUID of an element (from 0) of the parameter, and the index of the element that has that GUID.
    virtual GUID CalVectorParamGuid(const GUID& guid, int nIndex);
    virtual int CalVectorParamIndex(const GUID& guid);

    virtual BOOL IsParamGroupByGUID(const GUID& guid); ///< whether one of the own groups has this GUID
    virtual void DoParamInit(); ///< the parameters were reset or loaded: InitParam, and what else a node has to do then
    virtual void PreRender();   ///< a frame is about to be rendered, after the graph's evaluation
    virtual void StoreParameters();   ///< keep the values of all own parameters, in place of those kept before
    virtual void RestoreParameters(); ///< give the kept values, which stay kept, to the parameters still there

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

private:
    VEKParamGroup* m_pStoredParams = nullptr; ///< copies of the parameters that StoreParameters kept; owned
};

/// Base of every IO-process node.
class VEKCOMMON_API P_ExtDevIOProcess : public VEKProperty {
public:
    P_ExtDevIOProcess();
    ~P_ExtDevIOProcess() override;

    /// Device input or a network item arrived: 1 when the node consumed it, else 0. The record belongs to the caller.
    virtual int DevIOEventOccurred(const SIOEventRecord* pRecord);

    SGraphNode* m_pBaseGraphNode = nullptr; ///< graph node of the types that keep none of their own; not owned
};
