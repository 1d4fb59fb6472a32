#!/usr/bin/env bash
# Runs the tests and tells, file by file, which lines they execute.
set -euo pipefail
cd "$(dirname "$0")/.."

Scripts/setup.sh gcovr
Scripts/build.sh coverage
ctest --preset coverage
gcovr --root . --exclude 'Tests/' --exclude 'Benchmarks/' --exclude 'build/' build/coverage
