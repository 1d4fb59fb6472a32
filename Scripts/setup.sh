#!/usr/bin/env bash
# Installs what building and testing need and this Debian machine lacks.
# Usage: Scripts/setup.sh [package...]    further packages are installed as well
set -euo pipefail

packages=(
  g++ clang libclang-rt-dev clang-format clang-tidy cmake ninja-build pkg-config binutils git
  libgtest-dev libgmock-dev libbenchmark-dev
  libinih-dev nlohmann-json3-dev libcli11-dev libsqlite3-dev libpg-query-dev libutf8proc-dev libyaml-cpp-dev
  libkainjow-mustache-dev
  libpq-dev libmariadb-dev unixodbc-dev
  sqlite3 graphviz python3-jsonschema
  "$@"
)

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing+=("$package")
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

asRoot=()
if [ "$(id -u)" -ne 0 ]; then
  asRoot=(sudo)
fi
echo "Installing: ${missing[*]}"
if [[ " ${missing[*]} " == *" postgresql "* ]]; then
  # Tests start servers of their own; the package would make and start another one.
  "${asRoot[@]}" mkdir -p /etc/postgresql-common/createcluster.d
  echo "create_main_cluster = false" |
    "${asRoot[@]}" tee /etc/postgresql-common/createcluster.d/no-main-cluster.conf > /dev/null
fi
export DEBIAN_FRONTEND=noninteractive
"${asRoot[@]}" apt-get update --quiet
"${asRoot[@]}" apt-get install --quiet --yes --no-install-recommends "${missing[@]}"
