// A play-control command on its way to a device.
#pragma once

#include "host/EventRecord.h"

class VEKClip;

/// Root of the items that a socket can send.
class VEKCOMMON_API CZtBaseNetProtocol {
public:
    CZtBaseNetProtocol();
    virtual ~CZtBaseNetProtocol();
};

/// A play-control command on its way to a device.
class VEKRENDER_API CQORNetItemPlayCtlProtocol : public CZtBaseNetProtocol {
public:
    CQORNetItemPlayCtlProtocol();
    ~CQORNetItemPlayCtlProtocol() override; ///< deletes the attached data

    int m_nCommandCode = 0;
    CQORIOAttachedData* m_pAttachedData = nullptr; ///< owned
    VEKClip* m_pClip = nullptr;                    ///< clip that sends; not owned
};
