// The library's own header of this name as it is on Windows: only there it has wide strings.
#pragma once
#pragma GCC system_header // for include_next

// What the library's header includes stays native.
#include <cstdint>
#include <memory>
#include <sstream>
#include <string>
#include <unordered_map>
#include <vector>

#pragma push_macro("__declspec") // windows.h gives it another meaning than the library
#pragma push_macro("_WINDOWS_")  // the library would use more of windows.h than there is
#undef _WINDOWS_
#include <cpprest/asyncrt_utils.h>
#define _WIN32
#include_next <cpprest/json.h>
#undef _WIN32
#pragma pop_macro("_WINDOWS_")
#pragma pop_macro("__declspec")
