# Libraries from the system; why each is there stands in docs/architecture.md.

if(MSVC)
  return() # the host brings them: host_sdk.cmake
endif()
if(CMAKE_CROSSCOMPILING)
  include(${CMAKE_CURRENT_LIST_DIR}/windows_dependencies.cmake)
  return()
endif()

find_package(Threads REQUIRED)
find_package(pugixml REQUIRED)
find_package(nlohmann_json 3.11 REQUIRED)
find_package(Boost 1.74 REQUIRED)
find_package(cpprestsdk REQUIRED)
