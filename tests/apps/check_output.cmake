# Runs a program and holds what it writes to its standard output against an expression: the first line and the last.
# PROGRAM, EMULATOR (may be empty), ARGUMENTS (list), BEGIN and END (regular expressions)
execute_process(COMMAND ${EMULATOR} "${PROGRAM}" ${ARGUMENTS} OUTPUT_VARIABLE output RESULT_VARIABLE result)
string(REPLACE "\r" "" output "${output}")
if(NOT result EQUAL 0 OR NOT output MATCHES "^${BEGIN}" OR NOT output MATCHES "${END}\n$")
  message(FATAL_ERROR "${PROGRAM} ended with ${result} and wrote:\n${output}")
endif()
