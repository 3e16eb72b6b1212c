// The JSON library's own header, which redefines `__declspec` for itself; afterwards it means again what windows.h
// says.
#pragma once
#pragma GCC system_header // for include_next, which is an extension

#include_next <cpprest/json.h>

#include <compat/declspec.h>
