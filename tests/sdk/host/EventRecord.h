#pragma once

#include "vek/Api.h"

enum EVEKIODevice { eIOKeyboard, eIOPointer };

struct VEKIOEvent {
    EVEKIODevice Device;
    DWORD EventID;
    LPVOID Data;
};

class VEK_API CQORIOAttachedData {
public:
    virtual ~CQORIOAttachedData();
};

class VEK_API SQORMouseData : public CQORIOAttachedData {
public:
    SQORMouseData(int nPointer, float fX, float fY, CPoint pt, int bRelative);

    float Relative[2];
    POINT Pixel;
    DWORD PointerID;
    bool UsesRelative;
};

struct VEKKeyData {
    LPVOID Owner;
    CString Key;
};

struct VEKDeviceText {
    LPVOID Owner;
    DWORD DeviceID;
    CString Content;
};

struct VEKObjectText {
    LPVOID Owner;
    CString Names[2];
    CString Content;
};

struct VEKBroadcast {
    LPVOID Owner;
    CString Flag, Clip, Item, Value;
};

enum EVEKHand { eHandLeft, eHandRight };

class VEK_API SVRPluginData : public CQORIOAttachedData {
public:
    SVRPluginData();

    void clear();

    INT_PTR Sample;
    EVEKHand Hand;
    bool TriggerDown;
    bool PadDown;
    float Pad[2];
    float Pose[4][4];
    float HitX, HitY, HitZ;
    DWORD PressTick;
    DWORD ReleaseTick;
};
