#!/usr/bin/env bash
# Runs cluster_test.py with the Python package of a built tree.
# Usage: cluster_test.sh BUILD QEREFINE [cluster_test.py's options...]
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
build=$1
shift
if [ ! -x "$here/../../Scripts/wheel.sh" ]; then
  echo "skipped: there is no Python package"
  exit 77
fi
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
"$here/../../Scripts/wheel.sh" "$build" "$folder/wheel"
/usr/bin/python3 -m zipfile -e "$folder"/wheel/qerefine-*.whl "$folder/package"
PYTHONPATH=$folder/package "$here/cluster_test.py" "$@"
