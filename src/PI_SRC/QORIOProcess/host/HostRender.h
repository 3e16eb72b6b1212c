// Services and data of the host's render library VEKRenderx that nodes use.
#pragma once

#include "NodeBase.h"

#ifndef VEKRENDER_API
#define VEKRENDER_API __declspec(dllimport)
#endif

/// One object of a clip's scene.
class VEKRENDER_API VEKObject {
public:
    explicit VEKObject(const CString& strName);

    CString m_strName;
    float m_fMatrix[16]; ///< 4x4 transform; elements 12, 13, 14 in memory order are the position; starts as identity
};

/// The reference-node info of a clip: its link to the editor's view of the graph.
class VEKRENDER_API SClipRefNodeInfo {
public:
    /// Make the editor redraw the panel of the node that stands behind the graph node.
    void UpdateNodeByProperty(SGraphNode* pGraphNode);
};

/// A clip: the unit that owns nodes and scene objects.
class VEKRENDER_API VEKClip {
public:
    explicit VEKClip(const CString& strName);
    ~VEKClip();

    VEKClip(const VEKClip&) = delete;
    VEKClip& operator=(const VEKClip&) = delete;

    /// The scene object of that name, null if there is none. The clip owns it. nOption: 0.
    VEKObject* FindObject(const CString& strName, int nOption);

    CString m_strName;
    SClipRefNodeInfo m_refNodeInfo;
    CList<VEKObject*> m_lstObject; ///< owned
};

/// Kinds of posted event objects.
enum EQOREventID : int { QOR_EVENT_GENERAL = 2 };

/// An event object on its way to the host window. Whoever receives it deletes it.
class VEKRENDER_API SQOREvent {
public:
    SQOREvent(EQOREventID nId, const CString& strName);

    /// Deletes the parameters, and the integer that a parameter of type name "EventID" points at.
    ~SQOREvent();

    SQOREvent(const SQOREvent&) = delete;
    SQOREvent& operator=(const SQOREvent&) = delete;

    EQOREventID m_nId;
    CString m_strName;
    CList<VEKParam*> m_lstParam; ///< owned
};

/// Root of what an event record's payload may carry.
class VEKRENDER_API CQORIOAttachedData {
public:
    CQORIOAttachedData();
    virtual ~CQORIOAttachedData();
    CQORIOAttachedData(const CQORIOAttachedData&) = default;
    CQORIOAttachedData& operator=(const CQORIOAttachedData&) = default;
};

/// One sample of a pointer: a mouse, a finger or a pen.
class VEKRENDER_API SQORMouseData : public CQORIOAttachedData {
public:
    SQORMouseData(int nPointer, float fRelativeX, float fRelativeY, CPoint ptPixel, int bRelative);
    ~SQORMouseData() override;
    SQORMouseData(const SQORMouseData&) = default;
    SQORMouseData& operator=(const SQORMouseData&) = default;

    float m_fRelativeX; ///< x in the window's relative units
    float m_fRelativeY; ///< y in relative units, growing upwards
    CPoint m_ptPixel;   ///< window pixels, y growing downwards
    int m_nPointer;     ///< which pointer the sample belongs to
    int m_bRelative;    ///< not 0: the relative pair is the sample's coordinates
};

/// One sample of a VR hand controller.
class VEKRENDER_API SVRPluginData : public CQORIOAttachedData {
public:
    SVRPluginData();
    ~SVRPluginData() override;
    SVRPluginData(const SVRPluginData&) = default;
    SVRPluginData& operator=(const SVRPluginData&) = default;

    /// Back to an empty sample: the left controller, nothing pressed, everything zero.
    void clear();

    long long m_nSampleNumber; ///< counts the host's samples
    int m_nHand;               ///< 0: left controller, 1: right controller
    int m_bTriggerPressed;     ///< not 0 while the trigger is held
    int m_bTouchPadPressed;    ///< not 0 while the touch-pad is pressed
    float m_fTouchPadX;        ///< thumb position, -1 (left) to 1 (right)
    float m_fTouchPadY;        ///< thumb position, -1 (bottom) to 1 (top)
    int m_bTouchPadTouched;    ///< not 0 while the thumb rests on the touch-pad
    float m_fPose[16];         ///< 4x4 transform; elements 12, 13, 14 in memory order are the position
    float m_fHitPosition[3];   ///< x, y, z of the point that the controller's ray hits
    unsigned m_nPressTime;     ///< of the last trigger press; milliseconds, wrapping
    unsigned m_nReleaseTime;   ///< of the last trigger release; milliseconds, wrapping
};

/// The current value of a parameter as the graph supplies it: looked for in the graph node's input groups, then in the
/// node's own groups. Null if absent in both.
VEKRENDER_API VEKParam* QORFindParamByGuid(const GUID& guid, const VEKParamGroupList& lstGraphInput,
                                           const VEKParamGroupList& lstOwn);

/// Fire an event output on behalf of a node, straight to the host. pObject may be null. 1 when it was taken.
VEKRENDER_API int PostGeneralEventMessage(VEKProperty* pNode, VEKClip* pClip, VEKObject* pObject, int nOutput);

/// Folder that layout file paths are formed against; no trailing separator.
VEKRENDER_API CString G_GetModulePath();
