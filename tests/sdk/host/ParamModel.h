#pragma once

#include "vek/GraphNode.h"
#include "vek/Param.h"
#include "vek/ParamGroup.h"
#include "vek/ParamTools.h"
