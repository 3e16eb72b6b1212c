#pragma once

#include "vek/NetProtocol.h"
