#pragma once

#include "vek/Markup.h"
