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
