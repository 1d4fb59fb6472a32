#!/usr/bin/env bash
# Plants faults in the code, one at a time, and prints the share of them that the tests notice.
# Usage: Scripts/mutate.sh [--no-setup] [option...] [UNIT...]
#   --no-setup      install nothing
#   --sample N      how many faults are tried (default 200)
#   --seed N        which ones (default 1)
#   --jobs N        how many compilers or tests run at a time (default: the processors)
#   --only ID,...   these faults instead of a sample
#   --least SHARE   fails when less than this percentage is noticed, together or in one folder
#   --self-test     checks only that faults are found and planted where they belong
# Without units, all of Source and Engine/Graph.
set -euo pipefail
cd "$(dirname "$0")/.."

case ${1:-} in
  -h | --help) sed -n '2,/^set/{/^#/s/^# \?//p}' "$0"; exit 0 ;;
  --no-setup) shift ;;
  *) Scripts/setup.sh python3-clang-14 ;;
esac
exec /usr/bin/python3 Scripts/mutation/mutate.py "$@"
