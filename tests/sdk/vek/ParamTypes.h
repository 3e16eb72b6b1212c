#pragma once

#include "vek/Api.h"

enum EVEKParamType { eParamPointer, eParamText };
enum EVEKParamControl { eControlNone, eControlEdit };
