#pragma once

#include "vek/IOEvent.h"
#include "vek/PointerData.h"
#include "vek/TextData.h"
#include "vek/VRPluginData.h"
