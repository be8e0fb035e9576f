# Fails if the file of an instruction set offers the linker anything but its own entry: an inline function compiled for
# it could take the place of everybody's, on processors that lack the instructions.
# NM: the program, OBJECTS: all object files of the library.
set(checked 0)
foreach(object IN LISTS OBJECTS)
  if(NOT object MATCHES "vec_(sse|avx|f16c)")
    continue()
  endif()
  execute_process(COMMAND "${NM}" --defined-only --extern-only "${object}"
    OUTPUT_VARIABLE symbols OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  if(NOT symbols MATCHES "^[0-9a-f]+ T _ZN3oct3vec[0-9]+set_[a-z0-9]+E[A-Za-z0-9_]*$")
    message(FATAL_ERROR "${object} offers more than its entry:\n${symbols}")
  endif()
  math(EXPR checked "${checked} + 1")
endforeach()
if(NOT checked EQUAL 5)
  message(FATAL_ERROR "${checked} files of instruction sets were looked at instead of 5")
endif()
