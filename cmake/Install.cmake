# What `cmake --install` puts where.
#
#   <libdir>/libinvsys.so.0, libnimfw.so.0, libinvscan.so.0 (+ links)
#   <includedir>/invscan/{com,framework}/   the headers a host builds with
#   <libdir>/pkgconfig/invscan.pc, <libdir>/cmake/invscan/
#   <home>/bin/{invscan,cpuid,diskscan}     the scanner's home: NIM_HOMEDIR
#   <home>/config/NimHWConfig.xml           (or a link to INVSCAN_CONFIG_DIR)
#   <bindir>/invscan -> <home>/bin/invscan
#   <mandir>/man1/invscan.1
#
# The probes stay in the home's bin/, off the PATH: they are the library's
# helpers, and "cpuid" is also the name of another tool.
#
# Components, which the Debian packages follow: runtime (the shared
# libraries), dev (headers, development links, pkg-config and CMake files),
# tools (the home: the command line, the probes and the configuration).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(INVSCAN_HOME_DIR "lib/invscan" CACHE STRING
    "The scanner's home (NIM_HOMEDIR), relative to the install prefix")
set(INVSCAN_CONFIG_DIR "" CACHE STRING
    "An absolute folder for NimHWConfig.xml (as /etc/invscan); empty keeps it in <home>/config")

# The libraries find each other by a relative run path, so the installed
# tree may move; none where the library folder is the system's own. Set at
# build time, so installing edits nothing: CMake's edit in place would leave
# the build's path ending in an empty entry to make room, which the loader
# takes for the current folder (a test checks). The programs link all of ours
# statically and need no run path.
list(FIND CMAKE_PLATFORM_IMPLICIT_LINK_DIRECTORIES "${CMAKE_INSTALL_FULL_LIBDIR}" _system_libdir)
if(_system_libdir EQUAL -1)
  set_target_properties(invsys nimfw invscan PROPERTIES BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "$ORIGIN")
endif()

install(TARGETS invsys nimfw invscan EXPORT invscanTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
        INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} ${CMAKE_INSTALL_INCLUDEDIR}/invscan)
install(TARGETS invscan-cli cpuid diskscan RUNTIME DESTINATION ${INVSCAN_HOME_DIR}/bin COMPONENT tools)

# Only what a host needs: the data model, catalogue look-ups, rendering, the
# factory and group base, and the framework's String and configuration with
# what they include.
set(_com ${PROJECT_SOURCE_DIR}/src/invscan/com)
set(_fw ${PROJECT_SOURCE_DIR}/src/framework)
install(FILES ${_com}/Catalogue.h ${_com}/CatalogueIds.h ${_com}/Export.h ${_com}/GroupFactory.h
              ${_com}/HWConfig.h ${_com}/KorGroup.h ${_com}/KorTable.h ${_com}/KorTypes.h ${_com}/Render.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/invscan/com COMPONENT dev)
install(FILES ${_fw}/NimCfg.h ${_fw}/String.h ${_fw}/XmlNimParser.h ${_fw}/XmlNode.h
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/invscan/framework COMPONENT dev)

if(INVSCAN_CONFIG_DIR)
  install(FILES ${PROJECT_SOURCE_DIR}/config/NimHWConfig.xml DESTINATION ${INVSCAN_CONFIG_DIR} COMPONENT tools)
  install(CODE "file(CREATE_LINK \"${INVSCAN_CONFIG_DIR}\"
                     \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${INVSCAN_HOME_DIR}/config\" SYMBOLIC)" COMPONENT tools)
else()
  install(FILES ${PROJECT_SOURCE_DIR}/config/NimHWConfig.xml DESTINATION ${INVSCAN_HOME_DIR}/config COMPONENT tools)
endif()
# A host that sets no config_dir gets the configuration installed here.
if(INVSCAN_CONFIG_DIR)
  set(_installed_config "${INVSCAN_CONFIG_DIR}")
else()
  set(_installed_config "${CMAKE_INSTALL_PREFIX}/${INVSCAN_HOME_DIR}/config")
endif()
set_source_files_properties(${PROJECT_SOURCE_DIR}/src/invscan/com/InstalledConfig.cpp
  TARGET_DIRECTORY invscan_objects PROPERTIES COMPILE_DEFINITIONS "INVSCAN_INSTALLED_CONFIG_DIR=\"${_installed_config}\"")
file(RELATIVE_PATH _bindir_to_cli "/${CMAKE_INSTALL_BINDIR}" "/${INVSCAN_HOME_DIR}/bin/invscan")
install(CODE "file(MAKE_DIRECTORY \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
              file(CREATE_LINK \"${_bindir_to_cli}\"
                   \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}/invscan\" SYMBOLIC)" COMPONENT tools)
if(NOT INVSCAN_PACKAGE)  # the package installs it compressed
  install(FILES ${PROJECT_SOURCE_DIR}/doc/invscan.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tools)
  install(FILES ${PROJECT_SOURCE_DIR}/doc/invscan.3 DESTINATION ${CMAKE_INSTALL_MANDIR}/man3 COMPONENT dev)
endif()

# pkg-config: relative to the .pc file, so a moved tree still builds.
file(RELATIVE_PATH _pc_to_prefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" _pc_to_prefix "${_pc_to_prefix}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/invscan.pc.in ${CMAKE_BINARY_DIR}/invscan.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/invscan.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

# find_package(invscan): the imported target invscan::invscan.
set(_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/invscan)
install(EXPORT invscanTargets NAMESPACE invscan:: DESTINATION ${_cmake_dir} COMPONENT dev)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/invscanConfig.cmake.in
  ${CMAKE_BINARY_DIR}/invscanConfig.cmake INSTALL_DESTINATION ${_cmake_dir}
  PATH_VARS INVSCAN_HOME_DIR)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/invscanConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_BINARY_DIR}/invscanConfig.cmake ${CMAKE_BINARY_DIR}/invscanConfigVersion.cmake
        DESTINATION ${_cmake_dir} COMPONENT dev)
