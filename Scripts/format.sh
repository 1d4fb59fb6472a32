#!/usr/bin/env bash
# Formats the C++ code in place; with --check only tells what is not formatted.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(-i)
if [ "${1:-}" = --check ]; then
  mode=(--dry-run --Werror)
fi
git ls-files --cached --others --exclude-standard -z -- '*.cpp' '*.h' |
  xargs -0 --no-run-if-empty clang-format "${mode[@]}"
echo "formatting: done"
