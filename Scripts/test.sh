#!/usr/bin/env bash
# Sets up this machine, builds, and runs every test; ends with ctest's summary.
# Usage: Scripts/test.sh [--preset NAME] [--no-setup] [--browser] [--python] [--databases] [--agents]
#                        [ctest option...]
#   --preset NAME  one of release (default), debug, asan, tsan, clang, coverage
#   --no-setup     install nothing
#   --browser      also install the browser that tests of rendered pages use, and what drives it
#   --python       also install what builds the Python package and checks its types
#   --databases    also install the databases that tests read from and write to, without starting any
#   --agents       also fetch the clients of agents, and install node for them and the cluster's scheduler
set -euo pipefail
cd "$(dirname "$0")/.."

preset=release
setup=yes
databases=no
agents=no
extraPackages=()
while [ $# -gt 0 ]; do
  case $1 in
    --preset) preset=${2:?--preset needs a name}; shift ;;
    --no-setup) setup=no ;;
    --browser) extraPackages+=(chromium chromium-driver python3-selenium) ;;
    --python)
      extraPackages+=(mypy python3-build python3-cffi python3-dev python3-networkx python3-setuptools
                      python3-venv python3-wheel) ;;
    --databases)
      databases=yes
      extraPackages+=(postgresql mariadb-server-core mariadb-client-core
                      odbc-postgresql libsqliteodbc)
      command -v npm > /dev/null || extraPackages+=(npm) ;;
    --agents)
      agents=yes
      extraPackages+=(python3-distributed)
      command -v node > /dev/null || extraPackages+=(nodejs)
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
if [ $setup = yes ] && [ $agents = yes ]; then
  Scripts/fetch_mcp_client.sh
fi
Scripts/build.sh "$preset"
ctest --preset "$preset" "$@"
