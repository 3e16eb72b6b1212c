# Fails unless the program, run as COMMAND (a list), prints exactly what stands in the file EXPECTED.

execute_process(COMMAND ${COMMAND} OUTPUT_VARIABLE OUTPUT RESULT_VARIABLE RESULT)
if(NOT RESULT EQUAL 0)
  message(FATAL_ERROR "the program ended with ${RESULT}")
endif()
file(READ ${EXPECTED} TEXT)
if(NOT OUTPUT STREQUAL TEXT)
  list(JOIN COMMAND " " COMMAND)
  message(FATAL_ERROR "${EXPECTED} isn't what the program prints. To renew it:\n  ${COMMAND} >${EXPECTED}")
endif()
