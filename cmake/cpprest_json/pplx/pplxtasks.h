// The JSON part uses no tasks, but what the library's header of this name includes.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
