#pragma once

#include "vek/Socket.h"

struct SQORNetPlayCtrlDev {
    DWORD ID;
    CString DeviceName;
    CZTSocket Socket;
};

VEK_API CArray<SQORNetPlayCtrlDev*, SQORNetPlayCtrlDev*>* G_GetArNetPlayCtrlDev();
VEK_API SQORNetPlayCtrlDev* G_FindNetPlayCtrlDevByID(int nID);
