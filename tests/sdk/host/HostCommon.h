#pragma once

#include "vek/PX.h"
