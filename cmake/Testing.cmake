# GoogleTest from Debian's sources, built with the project's own compiler and sanitizers, and how tests are registered.
add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)

if(OCT_PLATFORM STREQUAL "windows")
  set(CMAKE_CROSSCOMPILING_EMULATOR "${CMAKE_SOURCE_DIR}/scripts/wine-run")
endif()
