# The JSON part of the C++ REST library, cpprestsdk::cpprest, with wide strings as the module is written for. Only on Windows
# the library has them, and Debian's package is native, so it's built from Debian's source of the installed libcpprest-dev,
# unchanged. What a compiler needs otherwise stands in cpprest_json/, which comes first in the include path.

fetch_debian_source(cpprest CpprestSource)
set(CpprestSource ${CpprestSource}/Release)
set(CpprestOwn ${CMAKE_CURRENT_LIST_DIR}/cpprest_json)
set(JsonSources
  ${CpprestSource}/src/json/json.cpp
  ${CpprestSource}/src/json/json_parsing.cpp
  ${CpprestSource}/src/json/json_serialization.cpp)

add_library(cpprest_json STATIC ${JsonSources} ${CpprestSource}/src/utilities/asyncrt_utils.cpp)
add_library(cpprestsdk::cpprest ALIAS cpprest_json)
target_compile_definitions(cpprest_json PUBLIC _NO_ASYNCRTIMP _NO_PPLXIMP)
target_compile_options(cpprest_json PRIVATE -w)
if(WIN32)
  set(CpprestOwnOfSystem ${CpprestOwn}/windows)
  target_compile_definitions(cpprest_json PUBLIC UNICODE _UNICODE)
else()
  set(CpprestOwnOfSystem ${CpprestOwn}/native)
  target_compile_definitions(cpprest_json PUBLIC _UTF16_STRINGS)
  set_source_files_properties(${JsonSources} PROPERTIES COMPILE_DEFINITIONS CPPREST_AS_ON_WINDOWS)
  target_compile_options(cpprest_json PRIVATE -fno-sanitize=undefined) # it negates the smallest number
endif()
target_include_directories(cpprest_json SYSTEM PUBLIC ${CpprestOwnOfSystem} ${CpprestOwn} ${CpprestSource}/include)
