# Run at the end of the installation of a component: what only packages of Debian have. Takes folder, package, version,
# contact.
set(root "$ENV{DESTDIR}${CMAKE_INSTALL_PREFIX}")

# Debian's change log of the package, which points to the project's own, dated by SOURCE_DATE_EPOCH.
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
set(log "$ENV{DESTDIR}${folder}/changelog")
file(WRITE "${log}" "${package} (${version}) unstable; urgency=medium\n\n"
  "  * What changed is told in the CHANGELOG.md of liboct-rendering-dev.\n\n -- ${contact}  ${date}\n")
file(GLOB pages "${root}/share/man/man1/*.1")
execute_process(COMMAND gzip -9nf "${log}" ${pages} COMMAND_ERROR_IS_FATAL ANY)

# The system's folders are searched anyway, and no others shall be.
file(GLOB files "${root}/lib/*/*.so*" "${root}/bin/*")
foreach(file IN LISTS files)
  if(NOT IS_SYMLINK "${file}")
    file(RPATH_REMOVE FILE "${file}")
  endif()
endforeach()
