# What makes two builds of one commit the same, and what tells where a shipped program crashed.

# No path of the building machine gets into a file, a clock into none either. ccache, if told so, names files from the
# build folder on and has options of its own; so names are made the same as without it, and options are not recorded. Of
# the names that fit the last one counts.
file(RELATIVE_PATH to_source "${CMAKE_BINARY_DIR}" "${CMAKE_SOURCE_DIR}")
file(RELATIVE_PATH to_glew "${CMAKE_BINARY_DIR}" "${OCT_GLEW_SOURCE_DIR}")
add_compile_options("-ffile-prefix-map=${CMAKE_SOURCE_DIR}=/usr/src/oct_rendering"
  "-ffile-prefix-map=${to_source}=/usr/src/oct_rendering/"
  "-ffile-prefix-map=${CMAKE_BINARY_DIR}=/usr/src/oct_rendering/build"
  "-ffile-prefix-map=${CMAKE_BINARY_DIR}/="
  "-ffile-prefix-map=${OCT_GLEW_SOURCE_DIR}=/usr/src/glew"
  "-ffile-prefix-map=${to_glew}=/usr/src/glew"
  -gno-record-gcc-switches)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  add_compile_options(-fno-canonical-system-headers)  # which depends on the length of names
endif()
add_compile_options(-Werror=date-time)
# Nor does the folder's length: a search path is emptied when a program is installed, and leaves its room behind.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
if(OCT_PLATFORM STREQUAL "windows")
  add_link_options(LINKER:--no-insert-timestamp)
endif()

# Names of functions and lines, for what is shipped. More would cost a third of the time of compiling.
if(NOT OCT_SANITIZE)
  set(OCT_SYMBOLS -g1)
endif()

# oct_ship(target)
# A shared library or program of the packages. Its symbols are not for the machines that it runs on. On Windows they go
# into NAME.debug, which GDB finds beside it, and what a PDB can hold, names of functions, into NAME.pdb. Packages for
# Debian take them out themselves. Without -p, objcopy would write the time into a DLL.
function(oct_ship target)
  if(NOT OCT_PLATFORM STREQUAL "windows" OR OCT_SANITIZE)
    return()
  endif()
  set(file "$<TARGET_FILE:${target}>")
  target_link_options(${target} PRIVATE "LINKER:--pdb=$<TARGET_FILE_BASE_NAME:${target}>.pdb")
  add_custom_command(TARGET ${target} POST_BUILD
    COMMAND "${CMAKE_OBJCOPY}" -p --only-keep-debug "${file}" "${file}.debug"
    COMMAND "${CMAKE_OBJCOPY}" -p --strip-all "--add-gnu-debuglink=${file}.debug" "${file}" VERBATIM)
  install(FILES "${file}.debug" "${CMAKE_BINARY_DIR}/$<TARGET_FILE_BASE_NAME:${target}>.pdb"
    DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT symbols)
endfunction()
