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

/// Root: the versions of the project format that an object was written with. Both are 0 until they are set.
class VEKCOMMON_API BaseStruct {
public:
    BaseStruct();

    /// Lowest host version that can read the object.
    virtual int GetLowVersion();
    /// Host version that wrote the object.
    virtual int GetReleaseVersion();
    /// The host sets them when it loads the object; they are kept as they are.
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
///
/// The host calls the operations, all on the thread that drives the graph. Its own answers are those of a node that has
/// nothing to do or to tell there; a node overrides what it needs. What is handed over or answered by pointer stays its
/// owner's, and a node keeps none of it beyond the call but the graph node. A node's operations raise nothing but the
/// framework's invalid-argument exception, for what breaks this contract; a call that fails for want of memory answers
/// as one that did nothing, and can be made again. Only a record to send for which there is no memory raises a
/// std::bad_alloc.
class VEKCOMMON_API VEKProperty : public BaseStruct, public SParamGrpPosAdjust {
public:
    VEKProperty();
    ~VEKProperty() override;

    // Life and parameters.

    /// Delete all parameter groups, and the values that StoreParameters kept.
    virtual void Empty();
    /// Once after creation, before the first use.
    virtual void Init();
    /// After loading: bring an older parameter set up to date.
    virtual void InitParam();
    /// The parameters' values have been changed as a whole: take them over. Nodes that read them at each evaluation
    /// have nothing to do.
    virtual void ApplyFromParam();
    /// The parameters' values are about to be read as a whole: write the current ones into them.
    virtual void ApplyToParam();
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
    /// Add the output groups to the graph node, which then owns them: once, all or none. Null does nothing.
    virtual void GetNodeOutput(SGraphNode* pGraphNode);
    /// One evaluation in the graph: 1 handled, 0 nothing done. Null tells the node that it has no place any more.
    virtual int ProcessNode(SGraphNode* pGraphNode);

    // Sub types: variants that one node type may offer. By default there are none, and the number is 0.

    /// The names of the sub types, in the order of their numbers, in place of what the array holds.
    virtual void GetSubTypes(CStringArray& arSubType);
    /// The editor chose a sub type, by its number or by its name; an unknown one changes nothing.
    VEK_OVERLOADS_IN_TABLE_ORDER(virtual void SetSubType(int nSubType);, virtual void SetSubType(CString strSubType);)
    /// Number of the chosen sub type.
    virtual int GetSubType();

    // Playing: for nodes that refer to a clip or play something step by step. IO-process nodes don't.

    /// The clip that the node refers to, not the one that owns it; null for none. Not the caller's.
    virtual VEKClip* GetNodeRefClip();
    /// How long that event of the node plays; seconds.
    virtual float GetEventDuration(int nEvent);
    /// Go to where that event begins: 1 when there is such a place, else 0.
    virtual int SeekEventBegin(int nEvent);
    /// Begin playing, go on to the next step, go to the step of that index (from 0), end: 1 when something played,
    /// else 0.
    virtual int PlayIn();
    virtual int PlayNext();
    virtual int PlayByIndex(int nIndex);
    virtual int PlayOut();
    /// The step that plays (from 0) and the number of steps; both are written, 0 and 0 without any.
    virtual void GetPlayIndexAndTotalCount(int& nIndex, int& nTotal);
    /// End the threads that the node started, before it's taken out of the graph. IO-process nodes start none.
    virtual void StopPiThread();
    /// The graph starts anew: forget what was put out so far. The graph node's pins are the host's to reset.
    virtual void ClearOutPutData();

    // What the editor shows, and how groups are saved.

    /// Name of the node's type as the editor shows it; by default the node's name.
    virtual CString GetTypeName();
    /// Name of the event that this output stands for, where it isn't the pin's own; empty: it is.
    virtual CString GetOutputEventName(int nOutput);
    /// Whether the number of inputs, or of outputs, is the user's to choose.
    virtual BOOL IsInputMulParams();
    virtual BOOL IsOutputMulParams();
    /// Where it is, the number of parameters at the beginning that stay.
    virtual int GetFixedMulParams();
    /// Group written for project format 4.0, which stays the node's; null: none.
    virtual VEKParamGroup* GetSave40ParamGrp();
    /// The small id that the group's GUID was made of; 0 for null.
    virtual int GetIDFromGrp(const VEKParamGroup* pGroup);

    // Vector parameters: one parameter that stands for several, whose number can change. By default there are none, so
    // that each parameter is its own and only element.

    /// The user chose so many elements: change the own groups.
    virtual void ChangeVectorParam(int nCount);
    /// The same for the graph node's inputs and outputs.
    virtual void ChangeNodeVectorParam(SGraphNode* pGraphNode, int nCount);
    /// Both changed: connect the graph node's parameters to the own ones again.
    virtual void DealWithChangeVectorParam(SGraphNode* pGraphNode);
    /// The GUID of an element (from 0) of the parameter, and the index of the element that has that GUID.
    virtual GUID CalVectorParamGuid(const GUID& guid, int nIndex);
    virtual int CalVectorParamIndex(const GUID& guid);

    /// Whether one of the own groups has this GUID.
    virtual BOOL IsParamGroupByGUID(const GUID& guid);
    /// The editor resets the parameters or has loaded them: InitParam, and what else a node has to do then.
    virtual void DoParamInit();
    /// A frame is about to be rendered, after the graph's evaluation.
    virtual void PreRender();
    /// Keep the values of all own parameters, in place of those kept before. For an editor that tries values out.
    virtual void StoreParameters();
    /// Give the kept values back to the parameters that are still there; the others stay as they are. What is kept
    /// stays kept; nothing happens when nothing is.
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

private:
    VEKParamGroup* m_pStoredParams = nullptr; ///< copies of the parameters that StoreParameters kept; owned
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
