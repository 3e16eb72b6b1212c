# The host that a build by Microsoft's compiler is for: its own headers and import libraries take the place of the
# reference host. VEK_SDK_DIR holds
#
#   include/host/*.h    headers named as those in src/PI_SRC/QORIOProcess/host/, which include the host's own ones
#   lib/*.lib           import libraries of VEKCommonx, VEKRenderx and VEKLogDllx
#
# and, unless CMAKE_PREFIX_PATH names another place, the CMake package cpprestsdk as the host was built with it: its JSON
# value crosses the boundary between host and module.

set(VEK_SDK_DIR "" CACHE PATH "Headers and import libraries of the host")
if(NOT EXISTS "${VEK_SDK_DIR}/include/host/NodeBase.h")
  message(FATAL_ERROR "VEK_SDK_DIR ('${VEK_SDK_DIR}') has no include/host/NodeBase.h: it must name the folder with the "
                      "host's headers and import libraries; docs/windows.md tells more")
endif()

list(APPEND CMAKE_PREFIX_PATH ${VEK_SDK_DIR})
find_package(cpprestsdk CONFIG REQUIRED)

foreach(HostLibrary IN ITEMS VEKCommonx VEKRenderx VEKLogDllx)
  find_library(${HostLibrary}_IMPORT_LIBRARY NAMES ${HostLibrary}.lib PATHS ${VEK_SDK_DIR}/lib NO_DEFAULT_PATH REQUIRED)
  add_library(${HostLibrary} INTERFACE)
  target_link_libraries(${HostLibrary} INTERFACE compat_headers ${${HostLibrary}_IMPORT_LIBRARY})
endforeach()
