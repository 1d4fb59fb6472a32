option(QEREFINER_BUILD_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(QEREFINER_BUILD_TOOLS "Build the command-line tool" ${PROJECT_IS_TOP_LEVEL})
option(QEREFINER_BUILD_EXAMPLES "Build the examples" ${PROJECT_IS_TOP_LEVEL})
option(QEREFINER_BUILD_BENCHMARKS "Build the benchmarks" OFF)
option(QEREFINER_BUILD_FUZZERS "Build the fuzz targets, which need clang" OFF)
option(QEREFINER_WARNINGS_AS_ERRORS "Treat warnings in this project's own code as errors" OFF)
option(QEREFINER_COVERAGE "Count executed branches, which needs clang" OFF)
option(QEREFINER_WITH_POSTGRESQL "Read PostgreSQL servers, where libpq is found" ON)
option(QEREFINER_WITH_MYSQL "Read MySQL and MariaDB servers, where libmariadb is found" ON)
option(QEREFINER_WITH_ODBC "Read databases through ODBC, where unixODBC is found" ON)
set(QEREFINER_SANITIZERS "" CACHE STRING "Sanitizers to build with, such as address,undefined")

set(QEREFINER_PLATFORM_TARGET qeengine CACHE STRING
  "Target that supplies the platform: its include directories hold the Platform headers")
set(QEREFINER_PLATFORM_PROJECT "" CACHE FILEPATH
  "CMake file that defines QEREFINER_PLATFORM_TARGET, when that is not qeengine")
set(QEREFINER_DATA_DIR "${PROJECT_SOURCE_DIR}/../shared/data" CACHE PATH
  "Folder of the published data sets; tests that need it are skipped where it is absent")
set(QEREFINER_DUCKDB_DIR "${PROJECT_SOURCE_DIR}/build/duckdb" CACHE PATH
  "Folder in which Scripts/fetch_duckdb.sh puts libduckdb.so; its test is skipped without it")
set(QEREFINER_MCP_CLIENT_DIR "${PROJECT_SOURCE_DIR}/build/mcp-client" CACHE PATH
  "Folder in which Scripts/fetch_mcp_client.sh puts the clients of agents; their sessions are skipped without them")

if(PROJECT_IS_TOP_LEVEL AND NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

include(GNUInstallDirs)

if(PROJECT_IS_TOP_LEVEL)
  set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
  set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
endif()
