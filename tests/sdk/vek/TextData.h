#pragma once

#include "vek/Api.h"

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
