#!/usr/bin/env bash
# Runs the tests and prints which share of the branches they take in each room, and which branches
# they never take. Fails when a room takes a smaller share than it should, when a branch of Source/
# is not taken for no reason that Scripts/coverage/unreached.txt knows, or when a test fails.
# Usage: Scripts/coverage.sh [--no-setup] [--no-tests] [--units] [FOLDER|UNIT...]
#   --no-setup  install nothing
#   --no-tests  print again what the last run counted
#   --units     also print the share of each unit
# The branches that are named are those of the folders or units; of Source when there are none.
set -euo pipefail
cd "$(dirname "$0")/.."

setup=yes
tests=yes
failed=no
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
  LLVM_PROFILE_FILE="$PWD/$build/profiles/%m.profraw" ctest --preset coverage || failed=yes
  llvm-profdata merge --sparse --output="$build/tests.profdata" "$build"/profiles/*.profraw
fi

programs=()
for program in "$build"/bin/*; do
  programs+=(--object "$program")
done
llvm-cov export "$build/lib/libqerefiner.so" "${programs[@]}" --instr-profile="$build/tests.profdata" \
  --skip-functions --skip-expansions >"$build/branches.json"
Scripts/coverage/branches.py "$build/branches.json" "${options[@]}"
if [ $failed = yes ]; then
  echo "Tests fail: what they would have taken is missing." >&2
  exit 1
fi
