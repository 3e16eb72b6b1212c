// Order of overloaded virtual operations in a class's virtual table.
#pragma once

// The Microsoft C++ ABI puts overloads of one name that a class introduces into its table in the reverse of their
// order of declaration, the Itanium C++ ABI in that order. This macro declares two overloads so that the first one
// stands first in the table with both.
#if defined(_MSC_VER)
#define VEK_OVERLOADS_IN_TABLE_ORDER(first, second) second first
#else
#define VEK_OVERLOADS_IN_TABLE_ORDER(first, second) first second
#endif
