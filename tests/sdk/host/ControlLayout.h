#pragma once

#include "vek/ParamPanel.h"
