#pragma once

#include "vek/Clip.h"
