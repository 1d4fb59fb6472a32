#!/usr/bin/env bash
# Compiles SOURCE with what pkg-config tells about the package under LIBDIR, and runs it.
set -euo pipefail
compiler=$1 libdir=$2 source=$3 program=$4

export PKG_CONFIG_PATH=$libdir/pkgconfig
read -ra flags <<<"$(pkg-config --cflags --libs qerefiner)"
"$compiler" -std=c++20 -o "$program" "$source" "${flags[@]}" "-Wl,-rpath,$libdir"
"$program"
