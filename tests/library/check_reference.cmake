# The reference of the interface, with the guides, is made without a warning: a function, a parameter or a link that
# leads nowhere fails. Arguments: DOXYGEN, SOURCE_DIR, OUTPUT_DIR.
cmake_minimum_required(VERSION 3.25)
file(READ "${SOURCE_DIR}/docs/Doxyfile" settings)
file(MAKE_DIRECTORY "${OUTPUT_DIR}")
file(WRITE "${OUTPUT_DIR}/Doxyfile" "${settings}\nOUTPUT_DIRECTORY = \"${OUTPUT_DIR}\"\n")
execute_process(COMMAND "${DOXYGEN}" "${OUTPUT_DIR}/Doxyfile" WORKING_DIRECTORY "${SOURCE_DIR}" RESULT_VARIABLE result)
if(NOT result EQUAL 0 OR NOT EXISTS "${OUTPUT_DIR}/html/index.html")
  message(FATAL_ERROR "doxygen ended with ${result}")
endif()
