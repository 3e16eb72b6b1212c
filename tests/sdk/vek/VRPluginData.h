#pragma once

#include "vek/AttachedData.h"

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
