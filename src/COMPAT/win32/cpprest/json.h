// The JSON library's own header. It redefines `__declspec` for itself; afterwards it means again what windows.h says.
// On Windows it includes windows.h. Here it must not see that: it would use parts that this windows.h doesn't have.
#pragma once
#pragma GCC system_header // for include_next, which is an extension

#include <windows.h>

#undef _WINDOWS_
#include_next <cpprest/json.h>
#define _WINDOWS_

#include <compat/declspec.h>
