#pragma once

#include "vek/NodeOutput.h"
#include "vek/RenderTools.h"
