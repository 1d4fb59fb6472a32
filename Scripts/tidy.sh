#!/usr/bin/env bash
# Checks the C++ code with clang-tidy (.clang-tidy); any finding is an error.
# Usage: Scripts/tidy.sh [FILE...]    all units when none is named
set -euo pipefail
cd "$(dirname "$0")/.."

# Clang reads the command lines of its own preset; its precompiled headers must exist.
Scripts/build.sh clang >/dev/null
if [ $# -eq 0 ]; then
  mapfile -t units < <(git ls-files -- '*.cpp' ':!Tests/Package')
else
  units=("$@")
fi
printf '%s\0' "${units[@]}" |
  xargs -0 --max-procs="$(nproc)" --max-args=1 clang-tidy --quiet -p build/clang 2>/dev/null
echo "clang-tidy: nothing to report"
