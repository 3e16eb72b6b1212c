# The Microsoft C++ ABI without Microsoft's tools: Debian's clang and lld over mingw-w64's C headers. What they're linked with,
# runtime.cmake builds. README.md tells more.

set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(MICROSOFT_ABI ON)

set(CMAKE_C_COMPILER clang-19) # GoogleTest asks for one, and compiles nothing by it
set(CMAKE_C_COMPILER_TARGET x86_64-pc-windows-msvc)
set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_CXX_COMPILER_TARGET x86_64-pc-windows-msvc)
set(CMAKE_AR llvm-ar-19)
set(CMAKE_NM llvm-nm-19)
set(CMAKE_MT llvm-mt-19)
set(CMAKE_OBJDUMP x86_64-w64-mingw32-objdump)
set(CMAKE_RC_COMPILER llvm-rc-19)
set(CMAKE_RC_FLAGS_INIT "-I /usr/share/mingw-w64/include")

# What CMake tries, it compiles only: there's nothing yet to link with. So it would find every library that it looks for;
# threads here are the system's, without one.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
foreach(Found IN ITEMS CMAKE_HAVE_LIBC_PTHREAD CMAKE_HAVE_PTHREADS_CREATE CMAKE_HAVE_PTHREAD_CREATE THREADS_HAVE_PTHREAD_ARG)
  set(${Found} OFF)
endforeach()

# _MSC_VER makes the sources choose the Microsoft order of overloads; the macros of MinGW make its C headers, which are
# written for its own compiler, take the branches that this target can compile, with the Universal C run-time.
set(CMAKE_CXX_FLAGS_INIT "-fms-extensions -fms-compatibility-version=19.40 -fgnuc-version=12.2 -D__MINGW32__ \
-D__MINGW64__ -D__MSVCRT__ -D_UCRT \"-D__int64=long long\" -D__declspec=__declspec -nostdinc -nostdinc++ \
-Wno-unused-command-line-argument -Wno-ignored-attributes -Wno-pragma-pack \"-Wno-#warnings\"")
set(CMAKE_MSVC_RUNTIME_LIBRARY "")
set(CMAKE_MSVC_DEBUG_INFORMATION_FORMAT "")

# Equal functions stay apart (noicf): a test tells classes apart by the addresses of theirs.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Xlinker /nodefaultlib -Xlinker /opt:ref,noicf")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${CMAKE_EXE_LINKER_FLAGS_INIT} -Xlinker /entry:_DllMainCRTStartup")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${CMAKE_SHARED_LINKER_FLAGS_INIT}")
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Xlinker /entry:mainCRTStartup")
set(CMAKE_CXX_STANDARD_LIBRARIES "" CACHE STRING "")

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
