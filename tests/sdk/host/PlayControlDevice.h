#pragma once

#include "vek/PlayCtrlDev.h"
#include "vek/Socket.h"
