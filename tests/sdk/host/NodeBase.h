#pragma once

#include "vek/ExtDevIOProcess.h"
#include "vek/Property.h"
