# Turns the GLSL files of a folder and its sub-folders into C++ string constants: display.frag becomes
# oct::shaders::display_frag, whatever its folder. A line #include "path" is replaced by the file of that path in the
# folder of shaders.
#
# Script arguments: SHADER_DIR, OUTPUT_DIR.
cmake_minimum_required(VERSION 3.25)

file(GLOB_RECURSE stages "${SHADER_DIR}/*.vert" "${SHADER_DIR}/*.frag")
list(SORT stages)

set(declarations "")
set(definitions "")
foreach(stage IN LISTS stages)
  file(READ "${stage}" text)
  while(text MATCHES "#include \"([^\"]+)\"\n")
    set(line "${CMAKE_MATCH_0}")
    set(file "${SHADER_DIR}/${CMAKE_MATCH_1}")
    if(NOT EXISTS "${file}")
      message(FATAL_ERROR "${stage}: included file ${file} does not exist")
    endif()
    file(READ "${file}" included)
    string(REPLACE "${line}" "${included}" text "${text}")
  endwhile()
  get_filename_component(name "${stage}" NAME)
  string(REPLACE "." "_" name "${name}")
  string(APPEND declarations "extern const char* const ${name};\n")
  string(APPEND definitions "const char* const ${name} = R\"glsl(${text})glsl\";\n\n")
endforeach()

file(WRITE "${OUTPUT_DIR}/shaders.h.new" "#pragma once\n\nnamespace oct::shaders {\n\n${declarations}\n}  // namespace oct::shaders\n")
file(WRITE "${OUTPUT_DIR}/shaders.cpp" "#include \"shaders.h\"\n\nnamespace oct::shaders {\n\n${definitions}}  // namespace oct::shaders\n")
# An unchanged header keeps its time, so that a changed shader compiles one file.
file(COPY_FILE "${OUTPUT_DIR}/shaders.h.new" "${OUTPUT_DIR}/shaders.h" ONLY_IF_DIFFERENT)
