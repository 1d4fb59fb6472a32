#!/usr/bin/env bash
# Compiles the example in C with what pkg-config tells about the package under LIBDIR, with the shared
# library and with the static one, and compares what it prints.
# Usage: build_c.sh COMPILER LIBDIR FOLDER
set -euo pipefail
compiler=$1 libdir=$2 folder=$3
examples=$(cd "$(dirname "$0")/../../Examples" && pwd)

export PKG_CONFIG_PATH=$libdir/pkgconfig
read -ra flags <<< "$(pkg-config --cflags --libs qerefine)"
read -ra whole <<< "$(pkg-config --static --cflags --libs qerefine)"
mkdir -p "$folder"
strict=(-std=c99 -Wall -Wextra -pedantic -Werror "$examples/c/report_sql.c")
"$compiler" "${strict[@]}" -o "$folder/shared" "${flags[@]}" "-Wl,-rpath,$libdir"
"$compiler" "${strict[@]}" -o "$folder/static" "${whole[@]/#-lqerefine/-l:libqerefine.a}"

report='{"subjects": ["returns", "store", "category"]}'
for program in shared static; do
  QEREFINER_SETTINGS='' "$folder/$program" "$examples/retail/model.json" "$report" postgresql |
    diff -u "$examples/c/expected.sql" -
done
if ldd "$folder/static" | grep -q libqerefine; then
  echo "the static program loads the shared library" >&2
  exit 1
fi
