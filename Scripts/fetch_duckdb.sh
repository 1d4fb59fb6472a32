#!/usr/bin/env bash
# Fetches the library of DuckDB, in which tests execute generated SQL, from the npm registry, where
# it lies as a binary; no script of the package is run. Debian has no package of it.
# Usage: Scripts/fetch_duckdb.sh [FOLDER]    the folder is build/duckdb where none is named
set -euo pipefail
cd "$(dirname "$0")/.."

version=1.5.6-r.1
folder=${1:-build/duckdb}
architecture=$(uname -m | sed 's/x86_64/x64/;s/aarch64/arm64/')
package=@duckdb/node-bindings-linux-$architecture
if [ -f "$folder/node_modules/$package/libduckdb.so" ]; then
  exit 0
fi
mkdir -p "$folder"
npm install --no-audit --no-fund --no-save --ignore-scripts --prefix "$folder" "$package@$version"
