#!/usr/bin/env bash
# Sets up this machine, builds, and runs every test; ends with ctest's summary.
# Usage: Scripts/test.sh [--preset NAME] [--no-setup] [--browser] [ctest option...]
#   --preset NAME  one of release (default), debug, asan, clang, coverage
#   --no-setup     install nothing
#   --browser      also install the browser that tests of rendered pages use, and what drives it
#   --databases    also install the database servers that tests read from, without starting any
set -euo pipefail
cd "$(dirname "$0")/.."

preset=release
setup=yes
extraPackages=()
while [ $# -gt 0 ]; do
  case $1 in
    --preset) preset=${2:?--preset needs a name}; shift ;;
    --no-setup) setup=no ;;
    --browser) extraPackages+=(chromium chromium-driver python3-selenium) ;;
    --databases)
      extraPackages+=(postgresql mariadb-server-core mariadb-client-core
                      odbc-postgresql libsqliteodbc) ;;
    -h | --help) sed -n '2,/^set/{/^#/s/^# \?//p}' "$0"; exit 0 ;;
    *) break ;;
  esac
  shift
done

if [ $setup = yes ]; then
  Scripts/setup.sh "${extraPackages[@]}"
fi
Scripts/build.sh "$preset"
ctest --preset "$preset" "$@"
