#pragma once

#include "vek/Event.h"
