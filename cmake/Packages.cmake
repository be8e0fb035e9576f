# What cpack packs: for Windows a zip of everything and one of its symbols, for Debian the library, what builds programs with
# it, the programs, and the symbols of each. Packages of one commit are the same, wherever and whenever they are made:
# docs/packages.md.
set(OCT_PACKAGE_CONTACT "OCT rendering authors <oct-rendering@users.noreply.invalid>" CACHE STRING
  "Who answers for the packages")

# All that has to be built before.
add_custom_target(shipped DEPENDS oct_rendering oct_device octrender octsimulate)
if(TARGET octview)
  add_dependencies(shipped octview)
endif()
if(TARGET scripting_header)
  add_dependencies(shipped scripting_header)
endif()

set(CPACK_PACKAGE_NAME oct_rendering)
set(CPACK_PACKAGE_VENDOR "The OCT rendering authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each has its own
set(CPACK_PACKAGE_CONTACT "${OCT_PACKAGE_CONTACT}")
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_RESOURCE_FILE_LICENSE "${CMAKE_SOURCE_DIR}/LICENSE")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PROJECT_CONFIG_FILE "${CMAKE_SOURCE_DIR}/packaging/config.cmake")
set(CPACK_OCT_SOURCE_DIR "${CMAKE_SOURCE_DIR}")
set(CPACK_VERBATIM_VARIABLES ON)
set(guides README.md CHANGELOG.md docs examples)
list(TRANSFORM guides PREPEND "${CMAKE_SOURCE_DIR}/")

if(OCT_PLATFORM STREQUAL "windows")
  set(CPACK_GENERATOR ZIP)
  install(FILES "${CMAKE_SOURCE_DIR}/LICENSE" "${CMAKE_SOURCE_DIR}/THIRD-PARTY-NOTICES" DESTINATION . COMPONENT runtime)
  install(FILES "${CMAKE_SOURCE_DIR}/LICENSE" "${CMAKE_SOURCE_DIR}/THIRD-PARTY-NOTICES" DESTINATION . COMPONENT symbols)
  foreach(guide IN LISTS guides)
    if(IS_DIRECTORY "${guide}")
      install(DIRECTORY "${guide}" DESTINATION . COMPONENT development)
    else()
      install(FILES "${guide}" DESTINATION . COMPONENT development)
    endif()
  endforeach()
  set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
  set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
  set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
  set(CPACK_COMPONENTS_ALL runtime development tools symbols)
  foreach(component RUNTIME DEVELOPMENT TOOLS)
    set(CPACK_COMPONENT_${component}_GROUP library)
  endforeach()
  set(CPACK_COMPONENT_SYMBOLS_GROUP symbols)
  set(name "oct_rendering-${PROJECT_VERSION}-windows-x64")
  set(CPACK_ARCHIVE_LIBRARY_FILE_NAME "${name}")
  set(CPACK_ARCHIVE_SYMBOLS_FILE_NAME "${name}-symbols")
  set(CPACK_PACKAGE_FILE_NAME "${name}")
  include(CPack)
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime development tools)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_BINARY_DIR}/lib")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)

# oct_debian_package(component name section summary [line...]): lines tell more, for the package's description.
function(oct_debian_package component name section summary)
  string(TOUPPER ${component} upper)
  list(JOIN ARGN "\n" text)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name} PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_FILE_NAME DEB-DEFAULT PARENT_SCOPE)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "${summary}\n${text}" PARENT_SCOPE)

  # What every package of Debian has in a folder of its own.
  set(folder "share/doc/${name}")
  set(files "${CMAKE_BINARY_DIR}/packaging/${name}")
  configure_file("${CMAKE_SOURCE_DIR}/packaging/debian/copyright.in" "${files}/copyright" @ONLY)
  install(FILES "${files}/copyright" "${CMAKE_SOURCE_DIR}/THIRD-PARTY-NOTICES" "${CMAKE_SOURCE_DIR}/LICENSE"
    DESTINATION "${folder}" COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(CODE "set(folder \"\${CMAKE_INSTALL_PREFIX}/${folder}\")
    set(package ${name})
    set(version ${PROJECT_VERSION})
    set(contact \"${OCT_PACKAGE_CONTACT}\")
    include(\"${CMAKE_SOURCE_DIR}/packaging/debian/finish.cmake\")" COMPONENT ${component} EXCLUDE_FROM_ALL)
  set(overrides "${CMAKE_SOURCE_DIR}/packaging/debian/${component}.lintian-overrides")
  if(EXISTS "${overrides}")
    install(FILES "${overrides}" DESTINATION share/lintian/overrides RENAME ${name} COMPONENT ${component} EXCLUDE_FROM_ALL)
  endif()
endfunction()

file(READ LICENSE OCT_LICENSE)
string(REGEX REPLACE "^MIT License\n\n[^\n]*\n\n" "" OCT_LICENSE "${OCT_LICENSE}")
string(STRIP "${OCT_LICENSE}" OCT_LICENSE)
string(REPLACE "\n\n" "\n.\n" OCT_LICENSE "${OCT_LICENSE}")
string(REPLACE "\n" "\n " OCT_LICENSE " ${OCT_LICENSE}")

oct_debian_package(runtime liboct-rendering${OCT_ABI_VERSION} libs "rendering of optical coherence tomography images"
  "B-scans and volumes of optical coherence tomography, recorded or live, drawn"
  "by OpenGL 3.3 into a window's context, into memory or into shared surfaces."
  "This package has the shared library.")
# A driver is not among the libraries that it is linked with, and no text shows without a font.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_DEPENDS "libgl1-mesa-dri")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "fonts-dejavu-core")
file(WRITE "${CMAKE_BINARY_DIR}/packaging/triggers" "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${CMAKE_BINARY_DIR}/packaging/triggers")
set(CPACK_DEBIAN_TOOLS_PACKAGE_CONTROL_EXTRA "${CMAKE_BINARY_DIR}/packaging/triggers")

install(FILES packaging/octrender.1 packaging/octsimulate.1 packaging/octview.1 DESTINATION share/man/man1 COMPONENT tools EXCLUDE_FROM_ALL)
oct_debian_package(tools oct-rendering-tools science "programs that draw and simulate optical coherence tomography"
  "octrender draws files (NumPy, PNG, TIFF) and the live volumes of a device,"
  "octview shows both in a window, octsimulate measures phantoms with a"
  "simulated device. The simulated device is a library of its own,"
  "liboct_device, which programs load by its name.")
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "liboct-rendering${OCT_ABI_VERSION} (= ${PROJECT_VERSION})")

oct_debian_package(development liboct-rendering-dev libdevel "rendering of optical coherence tomography - development files"
  "Headers, CMake and pkg-config files, guides and examples. The simulated"
  "device, which examples of live volumes use, comes with oct-rendering-tools.")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "liboct-rendering${OCT_ABI_VERSION} (= ${PROJECT_VERSION}), oct-rendering-tools (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_DEBUGINFO_PACKAGE OFF)
install(FILES README.md CHANGELOG.md DESTINATION share/doc/liboct-rendering-dev COMPONENT development EXCLUDE_FROM_ALL)
install(DIRECTORY docs examples DESTINATION share/doc/liboct-rendering-dev COMPONENT development EXCLUDE_FROM_ALL)
# Without packages.
install(FILES LICENSE THIRD-PARTY-NOTICES DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT notices)
include(CPack)
