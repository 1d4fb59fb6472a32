#!/usr/bin/env bash
# Sets up this machine, builds, and shows the library at work on a small model.
set -euo pipefail
cd "$(dirname "$0")/.."

Scripts/setup.sh
mkdir -p build
echo "Building (the messages go to build/demo.log) ..."
Scripts/build.sh release >build/demo.log 2>&1 || { cat build/demo.log; exit 1; }
build/release/bin/find_join_path
