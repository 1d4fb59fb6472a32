#!/usr/bin/env bash
# Sets up this machine, builds, and runs every test; ends with ctest's summary.
# Usage: Scripts/test.sh [--preset NAME] [--no-setup] [--browser] [ctest option...]
#   --preset NAME  one of release (default), debug, asan, tsan, clang, coverage
#   --no-setup     install nothing
#   --browser      also install the browser that tests of rendered pages use, and what drives it
#   --databases    also install the databases that tests read from and write to, without starting any
set -euo pipefail
cd "$(dirname "$0")/.."

preset=release
setup=yes
databases=no
extraPackages=()
while [ $# -gt 0 ]; do
  case $1 in
    --preset) preset=${2:?--preset needs a name}; shift ;;
    --no-setup) setup=no ;;
    --browser) extraPackages+=(chromium chromium-driver python3-selenium) ;;
    --databases)
      databases=yes
      extraPackages+=(postgresql mariadb-server-core mariadb-client-core
                      odbc-postgresql libsqliteodbc)
      command -v npm > /dev/null || extraPackages+=(npm) ;;
    -h | --help) sed -n '2,/^set/{/^#/s/^# \?//p}' "$0"; exit 0 ;;
    *) break ;;
  esac
  shift
done

if [ $setup = yes ]; then
  Scripts/setup.sh "${extraPackages[@]}"
fi
if [ $setup = yes ] && [ $databases = yes ]; then
  Scripts/fetch_duckdb.sh
fi
Scripts/build.sh "$preset"
ctest --preset "$preset" "$@"
