#pragma once

#include "vek/Api.h"

#include "host/EventRecord.h"

class VEKClip;

class VEK_API CZtBaseNetProtocol {
public:
    virtual ~CZtBaseNetProtocol();
};

class VEK_API CQORNetItemPlayCtlProtocol : public CZtBaseNetProtocol {
public:
    CQORNetItemPlayCtlProtocol();

    DWORD Command;
    CQORIOAttachedData* Attached;
    VEKClip* SourceClip;
};
