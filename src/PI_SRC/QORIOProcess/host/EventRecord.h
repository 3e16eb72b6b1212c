// The event record that the host hands to DevIOEventOccurred, and the payloads that it points at.
#pragma once

#include "host/Codes.h"
#include "host/Export.h"

/// What the host hands to a node. The record and its payload belong to the host and live for the call only.
struct SIOEventRecord {
    int m_nDevice;    ///< EIODevice
    int m_nEvent;     ///< what happened; ids per device
    void* m_pPayload; ///< payload of the device's own type; may be null
};

/// Root of what an event record's payload may carry.
class VEKRENDER_API CQORIOAttachedData {
public:
    CQORIOAttachedData();
    virtual ~CQORIOAttachedData();
};

/// One sample of a pointer: a mouse, a finger or a pen.
class VEKRENDER_API SQORMouseData : public CQORIOAttachedData {
public:
    SQORMouseData(int nPointer, float fRelativeX, float fRelativeY, CPoint ptPixel, int bRelative);
    ~SQORMouseData() override;

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

/// Payload of a key event.
struct SKeyEventData {
    void* m_pReserved = nullptr; ///< the host's; not read by nodes
    CString m_strText;           ///< text of the key; may be empty
};

/// Payload of DEVICE_TEXT: a text that a device sent.
struct SDeviceTextData {
    void* m_pReserved = nullptr; ///< the host's; not read by nodes
    int m_nDeviceId = 0;         ///< number of the device
    CString m_strText;
};

/// Payload of DEVICE_OBJECT_TEXT: a text that is addressed to one object of one clip.
struct SObjectTextData {
    void* m_pReserved = nullptr; ///< the host's; not read by nodes
    CString m_strClipName;
    CString m_strObjectName;
    CString m_strText;
};

/// Payload of EVENT_BROADCAST: the four texts of a received broadcast.
struct SBroadcastItem {
    void* m_pReserved = nullptr; ///< the host's; not read by nodes
    CString m_strFlag;
    CString m_strClipName;
    CString m_strName;
    CString m_strData;
};
