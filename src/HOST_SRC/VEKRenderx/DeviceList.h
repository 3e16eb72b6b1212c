// The host's list of play-control devices.
#pragma once

#include "host/PlayControlDevice.h"

/// Set what G_GetArNetPlayCtrlDev answers and G_FindNetPlayCtrlDevByID searches; null for no list. Not owned.
VEKRENDER_API void SetNetPlayCtrlDevices(NetPlayCtrlDevArray* pDevices);
