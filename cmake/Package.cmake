# The Debian package of the whole: libraries, headers, the command line, the
# probes, the configuration file (a conffile in /etc/invscan) and the man page.
# Configure with INVSCAN_PACKAGE=ON and the prefix /usr; scripts/package.sh
# does it all.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME invscan)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "invscan developers <invscan@example.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "hardware inventory scanner library and command")
set(CPACK_PACKAGE_DESCRIPTION "A library that an inventory framework loads to scan the machine it\n\
runs on: processors, memory, operating system, storage, partitions, network\n\
adapters and addresses, PCI devices, zones and virtual machines, each group\n\
as a typed table. The package also holds the framework support library, the\n\
probe programs the library runs, and invscan, a command that scans this\n\
machine and prints its tables, and that captures a machine's answers so that\n\
its scan can be replayed elsewhere.")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# The PCI Device group names devices from the PCI id database.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "pci.ids")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_CHECKSUM SHA256)

# What Debian asks of every package: a copyright file and a changelog in its
# documentation folder, man pages compressed without time stamps, and the
# configuration file declared as a conffile.
set(_pkgdir ${CMAKE_BINARY_DIR}/package)
file(MAKE_DIRECTORY ${_pkgdir})
# A native package (we are its upstream): its changelog is changelog.gz.
set(_changelog ${_pkgdir}/changelog)
file(WRITE ${_changelog} "invscan (${PROJECT_VERSION}) unstable; urgency=medium\n\n"
  "  * Packaged from the project's own build.\n\n"
  " -- ${CPACK_PACKAGE_CONTACT}  Tue, 24 Nov 2026 12:00:00 +0000\n")
foreach(_file ${_changelog} ${PROJECT_SOURCE_DIR}/doc/invscan.1)
  get_filename_component(_name ${_file} NAME)
  execute_process(COMMAND gzip -9nc ${_file} OUTPUT_FILE ${_pkgdir}/${_name}.gz COMMAND_ERROR_IS_FATAL ANY)
endforeach()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/doc/invscan.1)
install(FILES ${_pkgdir}/changelog.gz DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${PROJECT_SOURCE_DIR}/doc/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES ${_pkgdir}/invscan.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
# The libraries are in the system's folder: dpkg's ldconfig trigger updates
# its cache (CPack's own postinst and postrm call ldconfig as well).
file(WRITE ${_pkgdir}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${_pkgdir}/triggers)
if(INVSCAN_CONFIG_DIR)
  file(WRITE ${_pkgdir}/conffiles "${INVSCAN_CONFIG_DIR}/NimHWConfig.xml\n")
  list(APPEND CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${_pkgdir}/conffiles)
endif()
include(CPack)
