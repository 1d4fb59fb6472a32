#!/usr/bin/env bash
# Runs a command and compares its output with FILE: compare_output.sh FILE COMMAND [ARGUMENT...]
set -euo pipefail
expected=$1
shift
diff -u "$expected" <("$@")
