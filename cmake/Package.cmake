# The Debian packages, split as Debian splits a library:
#   libinvscan0     the shared libraries (runtime component)
#   libinvscan-dev  headers, development links, pkg-config and CMake files,
#                   the host guide (man 3) and the example host (dev)
#   invscan         the command line, the probes the library runs, the
#                   configuration file (a conffile in /etc/invscan) (tools)
# Configure with INVSCAN_PACKAGE=ON and the prefix /usr; scripts/package.sh
# does it all.
set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL runtime dev tools)
set(CPACK_PACKAGE_NAME invscan)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "invscan developers <invscan@example.org>")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_ENABLE_COMPONENT_DEPENDS ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_CHECKSUM SHA256)

set(_about "A library that an inventory framework loads to scan the machine it\n\
runs on: processors, memory, operating system, storage, partitions, network\n\
adapters and addresses, PCI devices, zones and virtual machines, each group\n\
as a typed table.")

set(_so ${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libinvscan${_so})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
# (shlibs are made only for packages that hold a shared library: the runtime)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
# The library runs the probes and reads the configuration of the tools package.
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "invscan (>= ${PROJECT_VERSION})")
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "hardware inventory scanner library\n${_about}\n\
This package holds the shared libraries: the scanner and the framework\n\
support library it is used with.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libinvscan-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_COMPONENT_DEV_DEPENDS runtime)
set(CPACK_COMPONENT_DEV_DESCRIPTION "hardware inventory scanner library - development files\n${_about}\n\
This package holds the headers, the pkg-config and CMake files a host\n\
builds with, the host guide invscan(3) and an example host.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME invscan)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION admin)
# The PCI Device group names devices from the PCI id database.
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS "pci.ids")
set(CPACK_COMPONENT_TOOLS_DESCRIPTION "hardware inventory scanner - command line and probes\n${_about}\n\
This package holds invscan, a command that scans this machine and prints\n\
its tables and captures a machine's answers for a replay elsewhere, the\n\
probe programs the library runs, and the hardware configuration file.")

# What Debian asks of every package: a copyright file and a changelog in its
# own documentation folder, man pages compressed without time stamps, and
# the configuration file declared as a conffile. Native packages (we are
# their upstream): the changelog is changelog.gz.
set(_pkgdir ${CMAKE_BINARY_DIR}/package)
file(MAKE_DIRECTORY ${_pkgdir})
set(_changelog ${_pkgdir}/changelog)
file(WRITE ${_changelog} "invscan (${PROJECT_VERSION}) unstable; urgency=medium\n\n"
  "  * Split into libinvscan${_so}, libinvscan-dev and invscan.\n"
  "  * Packaged from the project's own build.\n\n"
  " -- ${CPACK_PACKAGE_CONTACT}  Wed, 25 Nov 2026 12:00:00 +0000\n")
foreach(_file ${_changelog} ${PROJECT_SOURCE_DIR}/doc/invscan.1 ${PROJECT_SOURCE_DIR}/doc/invscan.3)
  get_filename_component(_name ${_file} NAME)
  execute_process(COMMAND gzip -9nc ${_file} OUTPUT_FILE ${_pkgdir}/${_name}.gz COMMAND_ERROR_IS_FATAL ANY)
endforeach()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/doc/invscan.1 ${PROJECT_SOURCE_DIR}/doc/invscan.3)
foreach(_component runtime dev tools)
  string(TOUPPER ${_component} _upper)
  set(_doc ${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${_upper}_PACKAGE_NAME})
  install(FILES ${_pkgdir}/changelog.gz ${PROJECT_SOURCE_DIR}/doc/copyright DESTINATION ${_doc} COMPONENT ${_component})
endforeach()
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/invscan COMPONENT tools)
install(FILES ${PROJECT_SOURCE_DIR}/examples/host/host.cpp ${PROJECT_SOURCE_DIR}/examples/host/Makefile
              ${PROJECT_SOURCE_DIR}/examples/host/CMakeLists.txt
        DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/libinvscan-dev/examples/host COMPONENT dev)
install(FILES ${_pkgdir}/invscan.1.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
install(FILES ${_pkgdir}/invscan.3.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man3 COMPONENT dev)

# The libraries are in the system's folder: dpkg's ldconfig trigger updates
# its cache.
file(WRITE ${_pkgdir}/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${_pkgdir}/triggers)
if(INVSCAN_CONFIG_DIR)
  file(WRITE ${_pkgdir}/conffiles "${INVSCAN_CONFIG_DIR}/NimHWConfig.xml\n")
  set(CPACK_DEBIAN_TOOLS_PACKAGE_CONTROL_EXTRA ${_pkgdir}/conffiles)
endif()
include(CPack)
