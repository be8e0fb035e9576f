# oct_zlib and oct_tiff: on Linux the system's libraries, for Windows static ones, so that the programs need no other DLL.
# Of libtiff only what reads images is built, and of the codecs those that need no further library.
add_library(oct_zlib INTERFACE)
if(OCT_PLATFORM STREQUAL "linux")
  find_package(ZLIB REQUIRED)
  target_link_libraries(oct_zlib INTERFACE ZLIB::ZLIB)
  find_package(TIFF 4.5 REQUIRED)
  add_library(oct_tiff INTERFACE)
  target_link_libraries(oct_tiff INTERFACE TIFF::TIFF)
  return()
endif()

find_library(OCT_ZLIB NAMES libz.a REQUIRED)
target_link_libraries(oct_zlib INTERFACE "${OCT_ZLIB}")

set(OCT_TIFF_SOURCE_DIR "${CMAKE_SOURCE_DIR}/build/deps/tiff-4.5.0" CACHE PATH "libtiff's source tree")
if(NOT EXISTS "${OCT_TIFF_SOURCE_DIR}/libtiff/tiffio.h")
  message(FATAL_ERROR "libtiff's sources are missing in ${OCT_TIFF_SOURCE_DIR}; scripts/prepare windows fetches them")
endif()

# What its own build finds out by compiling. It wants to be told in files.
set(configuration "${CMAKE_BINARY_DIR}/tiff")
file(CONFIGURE OUTPUT "${configuration}/tiffconf.h" CONTENT [[
#include <inttypes.h>
#include <stddef.h>
#include <stdint.h>
#define TIFF_INT8_T int8_t
#define TIFF_UINT8_T uint8_t
#define TIFF_INT16_T int16_t
#define TIFF_UINT16_T uint16_t
#define TIFF_INT32_T int32_t
#define TIFF_UINT32_T uint32_t
#define TIFF_INT64_T int64_t
#define TIFF_UINT64_T uint64_t
#define TIFF_SSIZE_T int64_t
#define HAVE_IEEEFP 1
#define HOST_FILLORDER FILLORDER_LSB2MSB
#define HOST_BIGENDIAN 0
#define LZW_SUPPORT 1
#define PACKBITS_SUPPORT 1
#define ZIP_SUPPORT 1
#define STRIPCHOP_DEFAULT TIFF_STRIPCHOP
#define SUBIFD_SUPPORT 1
]] @ONLY)
file(CONFIGURE OUTPUT "${configuration}/tif_config.h" CONTENT [[
#include "tiffconf.h"
#define HAVE_ASSERT_H 1
#define HAVE_FCNTL_H 1
#define HAVE_IO_H 1
#define HAVE_SYS_TYPES_H 1
#define PACKAGE_NAME "tiff"
#define SIZEOF_SIZE_T 8
#define STRIP_SIZE_DEFAULT 8192
#define TIFF_MAX_DIR_COUNT 1048576
#define USE_WIN32_FILEIO 1
#define TIFF_SIZE_FORMAT PRIu64
#define TIFF_SSIZE_FORMAT PRId64
]] @ONLY)

set(sources "")
foreach(part aux close codec compress dir dirinfo dirread dirwrite dumpmode error extension flush hash_set lzw open
    packbits predict read strip swab tile version warning win32 write zip)
  list(APPEND sources "${OCT_TIFF_SOURCE_DIR}/libtiff/tif_${part}.c")
endforeach()
add_library(oct_tiff STATIC ${sources})
target_include_directories(oct_tiff SYSTEM PUBLIC "${OCT_TIFF_SOURCE_DIR}/libtiff" "${configuration}")
target_compile_options(oct_tiff PRIVATE -w -O1)
# All files at once but one, which has functions of the same names as another.
set_target_properties(oct_tiff PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 0)
set_source_files_properties("${OCT_TIFF_SOURCE_DIR}/libtiff/tif_win32.c" PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
target_link_libraries(oct_tiff PUBLIC oct_zlib)
