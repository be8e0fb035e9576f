# Libraries that the project stands on.

# Objects of earlier builds are taken from ccache where there is one. It needs to be told that precompiled headers
# and the times of just fetched sources are fine.
find_program(OCT_CCACHE ccache)
foreach(language C CXX)
  if(OCT_CCACHE AND NOT CMAKE_${language}_COMPILER_LAUNCHER)
    set(CMAKE_${language}_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env
      CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime "${OCT_CCACHE}")
  endif()
endforeach()
if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  add_compile_options("$<$<COMPILE_LANGUAGE:CXX>:SHELL:-Xclang -fno-pch-timestamp>")
endif()

# oct_compile_together(target [ALL])
# Compiles several files of a target at once, most of which is reading the same headers; ALL: all of them. Files for one
# platform meet their own kind only: what its system's headers define is not for others. Files meet whose names never do,
# so names may hide each other. Without the option each file is compiled alone, has to include what it names, and hides
# none: scripts/lint naming builds so.
option(OCT_COMPILE_TOGETHER "Compile several files of a target at once" ON)
function(oct_compile_together target)
  if(NOT OCT_COMPILE_TOGETHER)
    return()
  endif()
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
  # Nor does a warning hold that takes every file but the first for a header.
  target_compile_options(${target} PRIVATE -Wno-shadow $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-subobject-linkage>)
  set(together 12)
  if("ALL" IN_LIST ARGN)
    set(together 1000)
  endif()
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources INCLUDE REGEX "[.]cpp$")
  set(platform_sources ${sources})
  list(FILTER platform_sources INCLUDE REGEX "_(windows|linux)[.]cpp$")
  list(FILTER sources EXCLUDE REGEX "_(windows|linux)[.]cpp$")
  foreach(kind sources platform_sources)
    set(count 0)
    foreach(source IN LISTS ${kind})
      math(EXPR group "${count} / ${together}")
      math(EXPR count "${count} + 1")
      set_source_files_properties("${source}" PROPERTIES UNITY_GROUP "${kind}_${group}")
    endforeach()
  endforeach()
endfunction()

# oct_precompile_headers(target header...)
function(oct_precompile_headers target)
  if(OCT_COMPILE_TOGETHER)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()

# Header-only libraries of the machine, reached through links: with -I/usr/include itself a cross compiler would read
# the machine's C headers.
set(OCT_HEADERS "${CMAKE_BINARY_DIR}/headers")
file(MAKE_DIRECTORY "${OCT_HEADERS}")
foreach(library boost glm CLI stb nlohmann)
  if(NOT EXISTS "/usr/include/${library}")
    message(FATAL_ERROR "The headers of ${library} are missing; ./check installs them")
  endif()
  file(CREATE_LINK "/usr/include/${library}" "${OCT_HEADERS}/${library}" SYMBOLIC)
endforeach()
add_library(oct_header_only INTERFACE)
target_include_directories(oct_header_only SYSTEM INTERFACE "${OCT_HEADERS}")

file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/headers-eigen")
file(CREATE_LINK "/usr/include/eigen3/Eigen" "${CMAKE_BINARY_DIR}/headers-eigen/Eigen" SYMBOLIC)
file(CREATE_LINK "/usr/include/eigen3/unsupported" "${CMAKE_BINARY_DIR}/headers-eigen/unsupported" SYMBOLIC)
add_library(oct_header_only_eigen INTERFACE)
target_include_directories(oct_header_only_eigen SYSTEM INTERFACE "${CMAKE_BINARY_DIR}/headers-eigen")

# GLEW, compiled with the project: Debian's own needs an X display to load OpenGL, and the DLL shall need no other.
if(NOT EXISTS "${OCT_GLEW_SOURCE_DIR}/src/glew.c")
  message(FATAL_ERROR "GLEW's sources are missing in ${OCT_GLEW_SOURCE_DIR}; scripts/prepare fetches them")
endif()
add_library(oct_glew STATIC "${OCT_GLEW_SOURCE_DIR}/src/glew.c")
target_include_directories(oct_glew SYSTEM PUBLIC "${OCT_GLEW_SOURCE_DIR}/include")
target_compile_definitions(oct_glew PUBLIC GLEW_STATIC GLEW_NO_GLU)
target_compile_options(oct_glew PRIVATE ${OCT_SYMBOLS})
# It fills a table of pointers once, which takes long to optimise and to instrument.
if(OCT_SANITIZE)
  target_compile_options(oct_glew PRIVATE -w -O0 -fno-sanitize=all)
else()
  target_compile_options(oct_glew PRIVATE -w -O1)
endif()
if(OCT_PLATFORM STREQUAL "windows")
  target_link_libraries(oct_glew PUBLIC opengl32 gdi32 user32)
else()
  target_compile_definitions(oct_glew PUBLIC GLEW_EGL)
  target_link_libraries(oct_glew PUBLIC EGL OpenGL)
endif()

# Fonts for text labels.
add_library(oct_fonts INTERFACE)
if(OCT_PLATFORM STREQUAL "windows")
  target_link_libraries(oct_fonts INTERFACE gdi32 user32)
else()
  find_package(Freetype REQUIRED)
  find_package(Fontconfig REQUIRED)
  target_link_libraries(oct_fonts INTERFACE Freetype::Freetype Fontconfig::Fontconfig)
endif()

# TIFF images and compressed data, for the programs.
include("${CMAKE_CURRENT_LIST_DIR}/Tiff.cmake")
include("${CMAKE_CURRENT_LIST_DIR}/Viewer.cmake")
