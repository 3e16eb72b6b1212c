// The library's header of this name, with what it expects of Microsoft's compiler alone.
#pragma once

#include <cstdlib>

#include <crtdbg.h>
#include <intrin.h>
#include <winsock2.h> // must precede windows.h for sources that use both

#include <windows.h>

#if !defined(_MSC_VER)
#define _ReturnAddress() __builtin_return_address(0)
#define __assume(condition) ((condition) ? static_cast<void>(0) : __builtin_unreachable())
#endif

// MinGW's own declares a function, which is not allowed everywhere.
#undef C_ASSERT
#define C_ASSERT(condition) static_assert(condition)

// Not by include_next: for Microsoft's target clang finds this file beside the one that includes it, not by the path.
#include <../include/cpprest/details/cpprest_compat.h>

// The library asks for the version of Microsoft's compiler.
#undef CPPREST_NOEXCEPT
#undef CPPREST_CONSTEXPR
#define CPPREST_NOEXCEPT noexcept
#define CPPREST_CONSTEXPR constexpr
