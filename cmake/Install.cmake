# Libraries, headers, CMake config package and pkg-config files, by component: what is packed together (Packages.cmake).
# runtime: the library. development: headers, what finds the library, documents. tools: programs and the simulated
# device.
include(CMakePackageConfigHelpers)

# A linker for Windows has the import libraries beside the DLL's in the component of the headers.
install(TARGETS oct_rendering EXPORT oct_rendering-targets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT development
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
if(OCT_PLATFORM STREQUAL "windows")
  install(FILES "${CMAKE_BINARY_DIR}/bin/oct_rendering.lib" DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
endif()
install(DIRECTORY "${CMAKE_SOURCE_DIR}/include/oct_rendering" "${CMAKE_SOURCE_DIR}/include/oct_device"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development)

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/oct_rendering")
install(EXPORT oct_rendering-targets NAMESPACE oct_rendering:: DESTINATION "${package_dir}" COMPONENT development)
configure_package_config_file("${CMAKE_SOURCE_DIR}/cmake/oct_rendering-config.cmake.in"
  "${CMAKE_BINARY_DIR}/oct_rendering-config.cmake" INSTALL_DESTINATION "${package_dir}")
if(PROJECT_VERSION_MAJOR EQUAL 0)
  set(compatibility SameMinorVersion)
else()
  set(compatibility SameMajorVersion)
endif()
write_basic_package_version_file("${CMAKE_BINARY_DIR}/oct_rendering-config-version.cmake"
  COMPATIBILITY ${compatibility})
install(FILES "${CMAKE_BINARY_DIR}/oct_rendering-config.cmake"
  "${CMAKE_BINARY_DIR}/oct_rendering-config-version.cmake" DESTINATION "${package_dir}" COMPONENT development)

# The file finds its prefix from where it lies, however deep the library folder is.
file(RELATIVE_PATH pc_to_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
foreach(library oct_rendering oct_device)
  configure_file("${CMAKE_SOURCE_DIR}/cmake/${library}.pc.in" "${CMAKE_BINARY_DIR}/${library}.pc" @ONLY)
  install(FILES "${CMAKE_BINARY_DIR}/${library}.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
endforeach()
