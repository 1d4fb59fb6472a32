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

# An installed tree can be moved: the pkg-config files find the prefix from where they lie.
file(RELATIVE_PATH pcPrefix "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" pcPrefix "${pcPrefix}")
set(pcRequires "")
if(withEngine)
  set(pcRequires "Requires: qeengine = ${PROJECT_VERSION}")
  configure_file(cmake/qeengine.pc.in qeengine.pc @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/qeengine.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
endif()
configure_file(cmake/qerefiner.pc.in qerefiner.pc @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/qerefiner.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
