# What programs of this build are linked with, in place of Microsoft's libraries: libc++ and a start-up code, both static,
# and import libraries of Wine's DLLs.

set(RuntimeDir ${PROJECT_BINARY_DIR}/microsoft_abi)
fetch_debian_source(llvm-toolchain-19 LlvmSource libcxx/include libcxx/src libcxx/vendor/llvm)
set(LibcxxDir ${LlvmSource}/libcxx)

# ---- Headers ---------------------------------------------------------------------------------------------------------

configure_file(${LibcxxDir}/vendor/llvm/default_assertion_handler.in ${RuntimeDir}/include/__assertion_handler COPYONLY)
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-resource-dir OUTPUT_VARIABLE ClangFolder
  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
foreach(Folder IN ITEMS ${CMAKE_CURRENT_LIST_DIR}/libcxx ${RuntimeDir}/include ${LibcxxDir}/include
                        /usr/share/mingw-w64/include ${ClangFolder}/include)
  add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:SHELL:-isystem ${Folder}>")
endforeach()
# Boost looks for these by the names of compilers.
add_compile_definitions(BOOST_ASIO_HAS_CO_AWAIT=1 BOOST_ASIO_HAS_STD_COROUTINE=1)

# ---- Import libraries ------------------------------------------------------------------------------------------------

# import_library(DLL [REGEX]): one of what Wine's DLL exports, or of the names that match.
function(import_library Dll)
  set(File /usr/lib/x86_64-linux-gnu/wine/x86_64-windows/${Dll}.dll)
  set(Library ${RuntimeDir}/lib/${Dll}.lib)
  if(NOT EXISTS ${Library} OR ${File} IS_NEWER_THAN ${Library})
    execute_process(COMMAND llvm-readobj-19 --coff-exports ${File} OUTPUT_VARIABLE Exports COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCHALL "\n  Name: [^ \n]+" Names "${Exports}")
    list(TRANSFORM Names REPLACE "\n  Name: " "")
    if(ARGC GREATER 1)
      list(FILTER Names INCLUDE REGEX "${ARGV1}")
    endif()
    list(JOIN Names "\"\n\"" Names)
    file(WRITE ${RuntimeDir}/lib/${Dll}.def "LIBRARY ${Dll}.dll\nEXPORTS\n\"${Names}\"\n")
    execute_process(COMMAND llvm-dlltool-19 -m i386:x86-64 -d ${RuntimeDir}/lib/${Dll}.def -l ${Library}
      COMMAND_ERROR_IS_FATAL ANY)
  endif()
  set_property(GLOBAL APPEND PROPERTY ImportLibraries ${Library})
endfunction()

import_library(ucrtbase)
import_library(vcruntime140 "^(__CxxFrameHandler3|_CxxThrowException|__RT.*|__C_specific_handler|__uncaught_exceptions|_purecall)$")
import_library(msvcp140 "^\\?__ExceptionPtr")
import_library(ntdll "^__chkstk$")
foreach(Dll IN ITEMS kernel32 user32 gdi32 advapi32 ws2_32 mswsock version)
  import_library(${Dll})
endforeach()
get_property(ImportLibraries GLOBAL PROPERTY ImportLibraries)
# The project names libraries of the system as those that a compiler finds by itself.
link_directories(${RuntimeDir}/lib)

# ---- libc++ and start-up code ----------------------------------------------------------------------------------------

file(GLOB LibcxxSources ${LibcxxDir}/src/*.cpp ${LibcxxDir}/src/filesystem/*.cpp ${LibcxxDir}/src/ryu/*.cpp
  ${LibcxxDir}/src/support/win32/*.cpp)
add_library(libcxx STATIC ${LibcxxSources})
target_compile_features(libcxx PRIVATE cxx_std_23)
target_compile_definitions(libcxx PRIVATE _LIBCPP_BUILDING_LIBRARY _LIBCPP_REMOVE_TRANSITIVE_INCLUDES NOMINMAX)
target_include_directories(libcxx PRIVATE ${LibcxxDir}/src)
target_compile_options(libcxx PRIVATE -w -O1)

file(GLOB StartupSources ${CMAKE_CURRENT_LIST_DIR}/runtime/*.cpp)
add_library(microsoft_startup STATIC ${StartupSources})
target_compile_options(microsoft_startup PRIVATE -fno-exceptions -Wno-main)

# The linker minds no order.
link_libraries(microsoft_startup libcxx ${ImportLibraries})
