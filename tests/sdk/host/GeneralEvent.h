#pragma once

#include "vek/Api.h"

#include "host/ParamModel.h"

enum EQOREventID { eEventGeneral = 2 };

class VEK_API SQOREvent {
public:
    SQOREvent(EQOREventID eID, CString strName);
    virtual ~SQOREvent();

    CList<VEKParam*, VEKParam*>* Params;
};
