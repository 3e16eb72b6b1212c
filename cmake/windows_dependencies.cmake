# Libraries of the cross build. Header-only ones are those that the native build uses, seen through a folder that holds
# links to them alone; compiled ones are built from Debian's source of the installed version.

find_package(Threads REQUIRED)

set(WindowsHeaders ${PROJECT_BINARY_DIR}/headers)
file(MAKE_DIRECTORY ${WindowsHeaders})
foreach(HeaderFolder boost CLI nlohmann)
  if(NOT EXISTS /usr/include/${HeaderFolder})
    message(FATAL_ERROR "/usr/include/${HeaderFolder} is missing: install libboost-dev, libcli11-dev and nlohmann-json3-dev")
  endif()
  file(CREATE_LINK /usr/include/${HeaderFolder} ${WindowsHeaders}/${HeaderFolder} SYMBOLIC)
endforeach()

add_library(Boost::headers INTERFACE IMPORTED GLOBAL)
target_include_directories(Boost::headers SYSTEM INTERFACE ${WindowsHeaders})
target_compile_definitions(Boost::headers INTERFACE _WIN32_WINNT=0x0A00)
target_link_libraries(Boost::headers INTERFACE ws2_32 mswsock)
add_library(Boost::boost ALIAS Boost::headers)

add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED GLOBAL)
target_include_directories(nlohmann_json::nlohmann_json SYSTEM INTERFACE ${WindowsHeaders})

add_library(CLI11::CLI11 INTERFACE IMPORTED GLOBAL)
target_include_directories(CLI11::CLI11 SYSTEM INTERFACE ${WindowsHeaders})

fetch_debian_source(pugixml PugixmlSource)
add_library(pugixml STATIC ${PugixmlSource}/src/pugixml.cpp)
add_library(pugixml::pugixml ALIAS pugixml)
target_include_directories(pugixml SYSTEM PUBLIC ${PugixmlSource}/src)

# Which characters are white space and digits, the Universal C run-time knows, which hosts of today run on, otherwise than the
# older one, which the cross compiler's library is made for: these functions come from there.
if(NOT MICROSOFT_ABI)
  set(CrtFunctions ${PROJECT_BINARY_DIR}/crt_functions)
  file(WRITE ${CrtFunctions}.def "LIBRARY ucrtbase.dll\nEXPORTS\n_wtoi\niswspace\n")
  execute_process(COMMAND ${CMAKE_DLLTOOL} --input-def ${CrtFunctions}.def --output-lib ${CrtFunctions}.a
    COMMAND_ERROR_IS_FATAL ANY)
  string(PREPEND CMAKE_CXX_STANDARD_LIBRARIES "${CrtFunctions}.a ")
endif()

# Programs of this build run under Wine, in a folder of its own for its registry and its C: drive, and on nobody's display.
set(CMAKE_CROSSCOMPILING_EMULATOR
  env -u DISPLAY ${PROJECT_SOURCE_DIR}/cmake/windows_emulator.sh ${PROJECT_BINARY_DIR}/wine)
