# The JSON part of the C++ REST library for the cross build, under the name that the native build's package has:
# cpprestsdk::cpprest. It's built from Debian's source of the installed libcpprest-dev, unchanged; what the cross compiler
# needs otherwise stands in cpprest_json/, which comes first in the include path.

fetch_debian_source(cpprest CpprestSource)
set(CpprestSource ${CpprestSource}/Release)
set(CpprestHeaders ${CMAKE_CURRENT_LIST_DIR}/cpprest_json ${CpprestSource}/include)

add_library(cpprest_json STATIC
  ${CpprestSource}/src/json/json.cpp
  ${CpprestSource}/src/json/json_parsing.cpp
  ${CpprestSource}/src/json/json_serialization.cpp
  ${CpprestSource}/src/utilities/asyncrt_utils.cpp)
add_library(cpprestsdk::cpprest ALIAS cpprest_json)
target_include_directories(cpprest_json SYSTEM PUBLIC ${CpprestHeaders})
target_compile_definitions(cpprest_json PUBLIC UNICODE _UNICODE _NO_ASYNCRTIMP _NO_PPLXIMP)
target_compile_options(cpprest_json PRIVATE -w)
