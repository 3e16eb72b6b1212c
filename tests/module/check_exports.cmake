# Fails unless LIBRARY exports exactly the symbols of the list EXPECTED. NM reads it.

execute_process(COMMAND ${NM} -D --defined-only --extern-only ${LIBRARY} OUTPUT_VARIABLE LISTING
  COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" LINES "${LISTING}")

set(SYMBOLS)
foreach(LINE IN LISTS LINES)
  string(REGEX REPLACE "^.*[ \t]" "" SYMBOL "${LINE}")
  list(APPEND SYMBOLS "${SYMBOL}")
endforeach()

list(SORT SYMBOLS)
list(SORT EXPECTED)
if(NOT SYMBOLS STREQUAL EXPECTED)
  list(LENGTH SYMBOLS COUNT)
  list(SUBLIST SYMBOLS 0 20 SYMBOLS)
  list(JOIN SYMBOLS "\n  " SYMBOLS)
  message(FATAL_ERROR "${LIBRARY} should export ${EXPECTED} alone, but exports ${COUNT} symbols:\n  ${SYMBOLS}")
endif()
