#pragma once

#include "vek/IOProcessPlugin.h"
