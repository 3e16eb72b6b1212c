#pragma once

#include "vek/Api.h"

class VEK_API CQORIOAttachedData {
public:
    virtual ~CQORIOAttachedData();
};
