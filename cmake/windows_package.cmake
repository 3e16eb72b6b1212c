# The package for Windows: an application folder with the module in it, and beside it the reference host. The target
# package makes QORIOProcessx-<version>-win64.zip in the build folder; ./package builds what belongs in it, and that.

set(PackageDocs ${PROJECT_BINARY_DIR}/package)
foreach(Document IN ITEMS readme.txt run.cmd)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/windows_${Document}.in ${PackageDocs}/${Document} @ONLY NEWLINE_STYLE WIN32)
  install(FILES ${PackageDocs}/${Document} DESTINATION .)
endforeach()

install(TARGETS iohost VEKCommonx VEKRenderx VEKLogDllx RUNTIME DESTINATION .)
install(DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/web DESTINATION .)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/app DESTINATION .)
install(TARGETS QORIOProcessx LIBRARY DESTINATION app/Plugins/NodePlugin)

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-win64)
set(CPACK_STRIP_FILES ON)
include(CPack)
