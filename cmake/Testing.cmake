# GoogleTest, and how tests are registered. For Linux Debian has it compiled, also for sanitizers, which look at our code.
if(OCT_PLATFORM STREQUAL "windows")
  set(BUILD_GMOCK OFF)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)
  # The linker looks each symbol's section up in a list, and the nine thousand that nobody inlined cost every program 2 s.
  target_compile_options(gtest PRIVATE -O1)
else()
  find_package(GTest REQUIRED)
  foreach(library gtest gtest_main)
    add_library(${library} INTERFACE)
    target_link_libraries(${library} INTERFACE GTest::${library})
  endforeach()
endif()

# Real recordings next to the project, where a machine has them. Tests that want them skip otherwise and say so.
set(OCT_SHARED_DATA "${CMAKE_SOURCE_DIR}/../shared/data" CACHE PATH "Folder of recorded OCT data")

# LLVM's linker takes half of the time. Under Wine some programs that it has linked wait for ever.
if(OCT_SANITIZE)
  find_program(OCT_LLD ld.lld)
endif()

# ThreadSanitizer runs what threads do; the rest would cost time and find nothing.
option(OCT_THREAD_TESTS_ONLY "Build and register only tests about threads" OFF)

# The same system runs the other tests with a sanitizer, and another one as they are released: ./check does without a third
# build of them.
option(OCT_NATIVE_TESTS_ONLY "Build and register only tests that no sanitizer build runs as well" OFF)

# oct_add_test(target [THREADS] [NATIVE | CLIENT] [SHARDS n])
#   THREADS: the test is about threads. NATIVE: it is about what is released, and runs as that, too. CLIENT: it is about a program
#   that uses the library as others do, and runs as released only. SHARDS: it takes long, and runs as so many processes.
# An entry of ctest is a process, not a case: starting one costs more than most cases do. Entries are named after the
# preset, so that several builds can be run as one. Each leaves a list of its cases, NAME.cases.xml.
function(oct_add_test target)
  cmake_parse_arguments(test "THREADS;NATIVE;CLIENT" "SHARDS" "" ${ARGN})
  oct_warnings(${target})
  target_include_directories(${target} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  target_compile_definitions(${target} PRIVATE OCT_SHARED_DATA="${OCT_SHARED_DATA}")
  get_target_property(libraries ${target} LINK_LIBRARIES)
  set(group plain)
  if(oct_test_support IN_LIST libraries)
    set(group support)
  endif()
  # Optimising and instrumenting the code of the tests themselves would take half of the time of ./check. What those
  # with oct_test_support compute, they compute in there; the others have long loops of their own.
  if(OCT_SANITIZE OR group STREQUAL "support")
    target_compile_options(${target} PRIVATE -O0)
  else()
    target_compile_options(${target} PRIVATE -O1)
  endif()
  if(OCT_LLD)
    target_link_options(${target} PRIVATE -fuse-ld=lld)
  endif()
  if((OCT_THREAD_TESTS_ONLY AND NOT test_THREADS) OR (OCT_SANITIZE AND test_CLIENT) OR
      (OCT_NATIVE_TESTS_ONLY AND NOT test_NATIVE AND NOT test_CLIENT))
    set_target_properties(${target} PROPERTIES EXCLUDE_FROM_ALL ON)
    return()
  endif()
  # Reading these headers takes a fifth of the time of compiling a test. Those with the same libraries share them.
  get_property(first GLOBAL PROPERTY oct_first_${group}_test)
  if(first)
    target_precompile_headers(${target} REUSE_FROM ${first})
  else()
    set(headers <gtest/gtest.h> <algorithm> <array> <filesystem> <fstream> <functional> <map> <memory> <mutex> <sstream>
      <string> <thread> <vector>)
    if(group STREQUAL "support")
      list(APPEND headers <GL/glew.h> <glm/glm.hpp>)
    endif()
    target_precompile_headers(${target} PRIVATE ${headers})
    set_property(GLOBAL PROPERTY oct_first_${group}_test ${target})
  endif()

  oct_compile_together(${target})

  if(NOT test_SHARDS)
    set(test_SHARDS 1)
  endif()
  get_filename_component(preset "${CMAKE_BINARY_DIR}" NAME)
  math(EXPR last "${test_SHARDS} - 1")
  foreach(shard RANGE ${last})
    set(name ${target})
    if(test_SHARDS GREATER 1)
      set(name ${target}.${shard})
    endif()
    add_test(NAME ${preset}.${name} COMMAND ${target})
    # What ThreadSanitizer does not see, the atomics of the driver's own threads, it takes for races of theirs.
    set(environment "")
    if(OCT_SANITIZE STREQUAL "thread")
      set(environment ";LP_NUM_THREADS=0")
    endif()
    # Those in shards begin before the others, so that the last to end are short ones.
    set_tests_properties(${preset}.${name} PROPERTIES TIMEOUT 600 LABELS "${preset}" COST ${test_SHARDS} ENVIRONMENT
      "GTEST_OUTPUT=xml:${name}.cases.xml;GTEST_TOTAL_SHARDS=${test_SHARDS};GTEST_SHARD_INDEX=${shard}${environment}")
  endforeach()
endfunction()
