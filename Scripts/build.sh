#!/usr/bin/env bash
# Configures and builds one preset.
# Usage: Scripts/build.sh [PRESET [TARGET...]]
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-release}
targets=("${@:2}")
if command -v ccache >/dev/null; then
  export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER:-ccache}
  # Lets ccache keep what is built from a precompiled header.
  export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS:-pch_defines,time_macros}
fi
cmake --preset "$preset"
cmake --build --preset "$preset" ${targets:+--target "${targets[@]}"}
