# Cross compiler for the Windows build: MinGW-w64 of Debian, with POSIX threads (g++-mingw-w64-x86-64-posix).

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)

# GCC 12 warns of overflows in its own std::string and std::vector that cannot be, once it optimises.
set(CMAKE_CXX_FLAGS_INIT "-Wno-array-bounds -Wno-stringop-overflow")

# Headers and libraries only from the target's own folders, never from the build machine's.
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# -static: the compiler's run-time goes into each binary, so that none of its DLLs must lie beside them.
# The others are the linker's defaults in some versions only: random load address, also above 4 GiB, and no execution of
# data.
set(WindowsLinkerFlags "-static -Wl,--dynamicbase,--nxcompat,--high-entropy-va")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${WindowsLinkerFlags}")
# Exported is what says __declspec(dllexport), nothing else, even in a library that exports nothing so far.
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${WindowsLinkerFlags} -Wl,--exclude-all-symbols")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${WindowsLinkerFlags} -Wl,--exclude-all-symbols")
