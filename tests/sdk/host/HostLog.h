#pragma once

#include "vek/Log.h"
