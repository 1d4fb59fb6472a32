include(CMakePackageConfigHelpers)

set(packageDir "${CMAKE_INSTALL_LIBDIR}/cmake/qerefiner")
set(withEngine OFF)
if(QEREFINER_PLATFORM_TARGET STREQUAL "qeengine")
  set(withEngine ON)
endif()

install(TARGETS qerefiner qerefiner_headers qetypes_headers
  EXPORT qerefinerTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
  FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/qerefiner")
if(withEngine)
  install(TARGETS qeplatform_headers
    EXPORT qerefinerTargets
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/qeplatform")
  install(TARGETS qeengine
    EXPORT qerefinerTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/qeengine")
endif()
install(EXPORT qerefinerTargets NAMESPACE qerefiner:: DESTINATION "${packageDir}")

configure_package_config_file(cmake/qerefinerConfig.cmake.in qerefinerConfig.cmake
  INSTALL_DESTINATION "${packageDir}")
write_basic_package_version_file(qerefinerConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES
  "${PROJECT_BINARY_DIR}/qerefinerConfig.cmake"
  "${PROJECT_BINARY_DIR}/qerefinerConfigVersion.cmake"
  DESTINATION "${packageDir}")

# qe_install_pkg_config(name [option of install()...]): the file from cmake/name.pc.in, with what the
# caller sets for it. An installed tree can be moved: the file finds the prefix from where it lies.
function(qe_install_pkg_config name)
  file(RELATIVE_PATH pcPrefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
  string(REGEX REPLACE "/$" "" pcPrefix "${pcPrefix}")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in" "${PROJECT_BINARY_DIR}/${name}.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${name}.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" ${ARGN})
endfunction()

set(pcRequires "")
if(withEngine)
  set(pcRequires "Requires: qeengine = ${PROJECT_VERSION}")
  qe_install_pkg_config(qeengine)
endif()
qe_install_pkg_config(qerefiner)
