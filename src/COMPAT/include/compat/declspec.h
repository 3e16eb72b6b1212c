// `__declspec(...)` for GCC on ELF. Deliberately without include guard: some third-party headers define the name for
// themselves, and including this file again puts this meaning back.
//
// Exported and imported both mean default visibility. An imported class must be visible as well, else the importing
// library would emit private copies of its type information and exceptions or casts would not match across libraries.

#if !defined(_WIN32)

#undef __declspec
#undef dllexport
#undef dllimport

#define COMPAT_DECLSPEC_dllexport __attribute__((visibility("default")))
#define COMPAT_DECLSPEC_dllimport __attribute__((visibility("default")))
#define __declspec(x) COMPAT_DECLSPEC_##x

#endif
