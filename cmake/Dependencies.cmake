# Libraries from the system; why each is there stands in docs/architecture.md.

if(MSVC)
  return() # the host brings them: host_sdk.cmake
endif()

# fetch_debian_source(NAME RESULT [FOLDER...]): RESULT is the folder with the source of that Debian package, or with these
# folders of it.
function(fetch_debian_source Name Result)
  set(Folder ${PROJECT_BINARY_DIR}/debian-source/${Name})
  if(NOT EXISTS ${Folder})
    message(STATUS "Fetching Debian's source of ${Name}")
    execute_process(
      COMMAND ${PROJECT_SOURCE_DIR}/cmake/fetch_debian_source.sh ${Name} ${Folder} ${ARGN}
      COMMAND_ERROR_IS_FATAL ANY)
  endif()
  set(${Result} ${Folder} PARENT_SCOPE)
endfunction()

if(MICROSOFT_ABI)
  include(${CMAKE_CURRENT_LIST_DIR}/microsoft_abi/runtime.cmake)
endif()
include(${CMAKE_CURRENT_LIST_DIR}/cpprest_json.cmake)

if(CMAKE_CROSSCOMPILING)
  include(${CMAKE_CURRENT_LIST_DIR}/windows_dependencies.cmake)
  return()
endif()

find_package(Threads REQUIRED)
find_package(pugixml REQUIRED)
find_package(nlohmann_json 3.11 REQUIRED)
find_package(Boost 1.74 REQUIRED)
find_package(CLI11 2.1 REQUIRED)
if(BUILD_TESTING)
  find_package(rapidcheck REQUIRED)
endif()
