# What the viewer's window stands on, compiled with the project from Debian's sources: oct_glfw (windows and input), oct_imgui (the
# interface) and oct_font (its letters, also those of figures).
enable_language(ASM)

# A font inside of the program looks the same everywhere and is never missing.
set(OCT_FONT "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf" CACHE FILEPATH "Font of windows and figures")
if(NOT EXISTS "${OCT_FONT}")
  message(FATAL_ERROR "The font ${OCT_FONT} is missing; scripts/prepare installs it")
endif()
file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/font/font.s" CONTENT [[
  .section .rodata
  .global oct_font_begin
  .global oct_font_end
oct_font_begin:
  .incbin "@OCT_FONT@"
oct_font_end:
]] @ONLY)
file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/font/oct_font.h" CONTENT [[
// The TrueType file of the font.
#pragma once

extern "C" const unsigned char oct_font_begin[];
extern "C" const unsigned char oct_font_end[];
]])
add_library(oct_font STATIC "${CMAKE_BINARY_DIR}/font/font.s")
set_target_properties(oct_font PROPERTIES LINKER_LANGUAGE C)
set_source_files_properties("${CMAKE_BINARY_DIR}/font/font.s" PROPERTIES OBJECT_DEPENDS "${OCT_FONT}")
if(OCT_PLATFORM STREQUAL "linux")
  # No stack of this is executable.
  target_compile_options(oct_font PRIVATE -Wa,--noexecstack)
endif()
target_include_directories(oct_font INTERFACE "${CMAKE_BINARY_DIR}/font")

# Tests of programs without windows need the font only.
if(OCT_SANITIZE)
  return()
endif()

set(OCT_GLFW_SOURCE_DIR "${CMAKE_SOURCE_DIR}/build/deps/glfw3-3.3.8" CACHE PATH "GLFW's source tree")
set(OCT_IMGUI_SOURCE_DIR "${CMAKE_SOURCE_DIR}/build/deps/imgui-1.86" CACHE PATH "Dear ImGui's source tree")
foreach(file "${OCT_GLFW_SOURCE_DIR}/include/GLFW/glfw3.h" "${OCT_IMGUI_SOURCE_DIR}/imgui.h")
  if(NOT EXISTS "${file}")
    message(FATAL_ERROR "${file} is missing; scripts/prepare viewer fetches it")
  endif()
endforeach()
foreach(name GLFW IMGUI)
  file(RELATIVE_PATH to_source "${CMAKE_BINARY_DIR}" "${OCT_${name}_SOURCE_DIR}")
  add_compile_options("-ffile-prefix-map=${OCT_${name}_SOURCE_DIR}=/usr/src/${name}"
    "-ffile-prefix-map=${to_source}=/usr/src/${name}")
endforeach()

set(parts context init input monitor vulkan window egl_context osmesa_context)
if(OCT_PLATFORM STREQUAL "windows")
  list(APPEND parts win32_init win32_monitor win32_time win32_thread win32_window wgl_context)
else()
  list(APPEND parts x11_init x11_monitor x11_window xkb_unicode posix_time posix_thread glx_context linux_joystick)
endif()
list(TRANSFORM parts PREPEND "${OCT_GLFW_SOURCE_DIR}/src/")
list(TRANSFORM parts APPEND ".c")
if(OCT_PLATFORM STREQUAL "windows")
  list(APPEND parts "${CMAKE_SOURCE_DIR}/apps/octview/window/no_joysticks_windows.c")
endif()
add_library(oct_glfw STATIC ${parts})
target_include_directories(oct_glfw PRIVATE "${OCT_GLFW_SOURCE_DIR}/src")
target_include_directories(oct_glfw SYSTEM PUBLIC "${OCT_GLFW_SOURCE_DIR}/include")
target_compile_definitions(oct_glfw INTERFACE GLFW_INCLUDE_NONE)
target_compile_options(oct_glfw PRIVATE -w ${OCT_SYMBOLS})
if(OCT_PLATFORM STREQUAL "windows")
  target_compile_definitions(oct_glfw PRIVATE _GLFW_WIN32 UNICODE _UNICODE WINVER=0x0601)
  target_link_libraries(oct_glfw PUBLIC gdi32 user32 shell32)
else()
  target_compile_definitions(oct_glfw PRIVATE _GLFW_X11)
  target_link_libraries(oct_glfw PUBLIC X11 ${CMAKE_DL_LIBS} rt m Threads::Threads)
endif()

set(sources "")
foreach(part imgui imgui_draw imgui_tables imgui_widgets backends/imgui_impl_glfw backends/imgui_impl_opengl3)
  list(APPEND sources "${OCT_IMGUI_SOURCE_DIR}/${part}.cpp")
endforeach()
add_library(oct_imgui STATIC ${sources})
target_include_directories(oct_imgui SYSTEM PUBLIC "${OCT_IMGUI_SOURCE_DIR}")
# The hooks for tests tell a script where each item of the interface is.
target_compile_definitions(oct_imgui PUBLIC IMGUI_ENABLE_TEST_ENGINE IMGUI_DISABLE_OBSOLETE_FUNCTIONS
  IMGUI_DISABLE_DEMO_WINDOWS IMGUI_DISABLE_METRICS_WINDOW)
target_compile_options(oct_imgui PRIVATE -w -O1 ${OCT_SYMBOLS})
target_link_libraries(oct_imgui PUBLIC oct_glfw)
