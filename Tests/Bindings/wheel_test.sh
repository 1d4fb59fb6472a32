#!/usr/bin/env bash
# Builds the wheel, installs it into a fresh environment without a package index, and tests it there.
# Usage: wheel_test.sh BUILD QEREFINE DATA [option of python_test.py...]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$1 tool=$2 data=$3
shift 3
python=${QEREFINE_PYTHON:-/usr/bin/python3}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
wheel=$("$here/../../Scripts/wheel.sh" "$build" "$work/wheel")
# cffi, on which the package depends, is Debian's; no other package is in reach.
"$python" -m venv --system-site-packages "$work/environment"
"$work/environment/bin/pip" install --quiet --disable-pip-version-check --no-index "$wheel"
cd "$work"
QEREFINER_SETTINGS= "$work/environment/bin/python" "$here/python_test.py" "$tool" "$data" "$@"
