#pragma once

#include "vek/Api.h"

class CZtBaseNetProtocol;

class VEK_API CZtSocketParser : public CObject {
    DECLARE_DYNAMIC(CZtSocketParser)
};

class VEK_API CZTDirectParser : public CZtSocketParser {
    DECLARE_DYNAMIC(CZTDirectParser)
};

class VEK_API CZTSocket {
public:
    BOOL SendInfo(CZtBaseNetProtocol* pItem);
    BOOL SendInfo(unsigned char* pBytes, int nCount);

    CZtSocketParser* Parser;
};

struct SQORNetPlayCtrlDev {
    DWORD ID;
    CString DeviceName;
    CZTSocket Socket;
};

VEK_API CArray<SQORNetPlayCtrlDev*, SQORNetPlayCtrlDev*>* G_GetArNetPlayCtrlDev();
VEK_API SQORNetPlayCtrlDev* G_FindNetPlayCtrlDevByID(int nID);
