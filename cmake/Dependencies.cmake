# Libraries that the project stands on.

# Header-only libraries of the machine, reached through links: with -I/usr/include itself a cross compiler would read
# the machine's C headers.
set(OCT_HEADERS "${CMAKE_BINARY_DIR}/headers")
file(MAKE_DIRECTORY "${OCT_HEADERS}")
foreach(library boost glm CLI stb)
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
# It fills a table of pointers once, which takes long to optimise and to instrument.
target_compile_options(oct_glew PRIVATE -w -O1)
if(OCT_SANITIZE)
  target_compile_options(oct_glew PRIVATE -fno-sanitize=all)
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
