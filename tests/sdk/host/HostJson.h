#pragma once

#include "vek/JsonTools.h"
