# A platform from elsewhere, as a project that embeds the refiner would define it.
add_library(other_platform SHARED IMPORTED GLOBAL)
set_target_properties(other_platform PROPERTIES
  IMPORTED_LOCATION "${OTHER_PLATFORM_PREFIX}/${OTHER_PLATFORM_LIBDIR}/libqeengine.so")
target_include_directories(other_platform INTERFACE
  "${OTHER_PLATFORM_PREFIX}/include/qeplatform")

add_executable(other_platform_host "${PROJECT_SOURCE_DIR}/Tests/Package/Consumer/consumer.cpp")
target_link_libraries(other_platform_host PRIVATE qerefiner)
add_custom_command(TARGET other_platform_host POST_BUILD
  COMMAND test ! -e "${PROJECT_BINARY_DIR}/Engine"
  COMMENT "No unit of the project's own engine was built")
