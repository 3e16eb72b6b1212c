# Of the cross build most of the time goes into reading the same headers again and again: Windows', Asio's, JSON's. They are
# read once for each target that has many sources. The sources themselves include what they use, as the native build shows,
# which has no precompiled headers: its objects come from the cache in another clone too, which they can't with such headers.

function(precompile TARGET)
  target_precompile_headers(${TARGET} PRIVATE ${ARGN})
  if(CCACHE)
    # The cache has to be told that precompiled headers don't depend on what changes with each run.
    set_target_properties(${TARGET} PROPERTIES CXX_COMPILER_LAUNCHER
      "${CMAKE_COMMAND};-E;env;CCACHE_BASEDIR=${PROJECT_SOURCE_DIR};CCACHE_NOHASHDIR=1;CCACHE_SLOPPINESS=pch_defines,time_macros;${CCACHE}")
  endif()
endfunction()

precompile(QORIOProcessx <afxwin.h> <afxtempl.h> <algorithm> <string> <vector>)
precompile(iohost_core <afxwin.h> <afxtempl.h> <boost/asio.hpp> <boost/beast/core.hpp> <nlohmann/json.hpp>
  <algorithm> <filesystem> <functional> <iostream> <map> <memory> <string> <vector>)
if(BUILD_TESTING)
  precompile(compat_tests <gtest/gtest.h> <afxwin.h> <afxtempl.h> <string> <vector>)
  precompile(module_tests <gtest/gtest.h> <afxwin.h> <afxtempl.h> <functional> <map> <string> <vector>)
  precompile(host_tests <gtest/gtest.h> <afxwin.h> <afxtempl.h> <nlohmann/json.hpp>
    <algorithm> <filesystem> <functional> <map> <memory> <string> <vector>)
endif()
