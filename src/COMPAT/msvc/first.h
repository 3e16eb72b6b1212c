// Comes first in every source that Microsoft's compiler compiles (its option /FI).
#pragma once

#include <algorithm>

// The drawing library's headers call min and max without a namespace. Windows' macros of these names are switched off,
// since they would break std::min and std::max.
namespace Gdiplus {
using std::max;
using std::min;
} // namespace Gdiplus
