#!/usr/bin/env bash
# Runs the tests and prints which share of the branches they took in each room, and which branches
# they never took for no reason that Scripts/coverage/unreached.txt knows. Fails when there is such
# a branch, or when a room takes a smaller share than it should.
# Usage: Scripts/coverage.sh [--no-setup] [--no-tests] [--units] [FOLDER|UNIT...]
#   --no-setup  install nothing
#   --no-tests  print again what the last run counted
#   --units     also print the share of each unit
# With folders or units, only branches of these are named.
set -euo pipefail
cd "$(dirname "$0")/.."

setup=yes
tests=yes
options=()
while [ $# -gt 0 ]; do
  case $1 in
    --no-setup) setup=no ;;
    --no-tests) setup=no tests=no ;;
    -h | --help) sed -n '2,/^set/{/^#/s/^# \?//p}' "$0"; exit 0 ;;
    *) options+=("$1") ;;
  esac
  shift
done

build=build/coverage
if [ $setup = yes ]; then
  Scripts/setup.sh llvm
fi
if [ $tests = yes ]; then
  Scripts/build.sh coverage
  rm -rf "$build/profiles"
  # Every process adds to the file of its program, also one that a test or a script starts.
  LLVM_PROFILE_FILE="$PWD/$build/profiles/%m.profraw" ctest --preset coverage ||
    echo "Some tests fail: what they would have taken is missing." >&2
  llvm-profdata merge --sparse --output="$build/tests.profdata" "$build"/profiles/*.profraw
fi

programs=()
for program in "$build"/bin/*; do
  programs+=(--object "$program")
done
llvm-cov export "$build/lib/libqerefiner.so" "${programs[@]}" --instr-profile="$build/tests.profdata" \
  --skip-functions --skip-expansions >"$build/branches.json"
exec Scripts/coverage/branches.py "$build/branches.json" "${options[@]}"
