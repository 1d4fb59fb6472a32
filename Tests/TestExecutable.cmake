# GoogleTest's headers take longer to compile than most tests; every test executable shares them.
add_library(qe_test_main STATIC TestMain.cpp)
qe_configure_target(qe_test_main)
target_link_libraries(qe_test_main PUBLIC GTest::gmock GTest::gtest)
target_compile_definitions(qe_test_main PUBLIC
  QEREFINER_DATA_DIR="${QEREFINER_DATA_DIR}"
  QEREFINER_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
target_precompile_headers(qe_test_main PRIVATE <gmock/gmock.h> <gtest/gtest.h>)

# qe_add_test(name SOURCES file... [LIBRARIES target...])
#
# A test executable whose cases each become a test, run in a process of its own. To reach what a
# library hides, link its objects (qerefiner_objects, qeengine_objects) instead of the library.
function(qe_add_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES")
  foreach(library qerefiner qeengine)
    if(library IN_LIST arg_LIBRARIES AND ${library}_objects IN_LIST arg_LIBRARIES)
      message(FATAL_ERROR "${name} links ${library} twice: as library and as objects")
    endif()
  endforeach()
  if("qerefiner" IN_LIST arg_LIBRARIES AND "qeengine_objects" IN_LIST arg_LIBRARIES)
    message(FATAL_ERROR "${name} links qeengine twice: its objects and, through qerefiner, the library")
  endif()

  add_executable(${name} ${arg_SOURCES})
  qe_configure_target(${name})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE qe_test_main ${arg_LIBRARIES})
  target_precompile_headers(${name} REUSE_FROM qe_test_main)
  if(QEREFINER_SANITIZERS MATCHES thread)
    # Programs that count allocations bring functions that this sanitizer brings as well.
    target_link_options(${name} PRIVATE LINKER:--allow-multiple-definition)
  endif()
  gtest_discover_tests(${name}
    DISCOVERY_MODE PRE_TEST
    TEST_PREFIX ${name}.
    PROPERTIES TIMEOUT 300)
endfunction()
