#!/usr/bin/env bash
# Makes the wheel of the Python package, without any package index.
# Usage: Scripts/wheel.sh [BUILD [FOLDER]]
#   BUILD   a built tree (build/release); its C library goes into the wheel
#   FOLDER  where the wheel is put (BUILD/wheel)
set -euo pipefail
cd "$(dirname "$0")/.."

build=$(realpath "${1:-build/release}")
folder=$(realpath -m "${2:-$build/wheel}")
# Debian's packages are in its own interpreter.
python=${QEREFINE_PYTHON:-/usr/bin/python3}
if ! "$python" -c 'import build, cffi, setuptools, wheel' 2> /dev/null; then
  echo "wheel.sh: needs python3-build, python3-cffi, python3-dev, python3-setuptools and python3-wheel" >&2
  exit 77
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/prefix" --component capi --strip > /dev/null
# The build writes beside its sources.
cp -r Bindings/Python "$work/package"
mkdir -p "$folder"
rm -f "$folder"/qerefine-*.whl
QEREFINE_PREFIX=$work/prefix "$python" -m build --no-isolation --skip-dependency-check --wheel \
  --outdir "$folder" "$work/package" > "$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
ls "$folder"/qerefine-*-abi3-*.whl
