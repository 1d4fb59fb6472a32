#!/usr/bin/env bash
# Throws bytes at whatever reads some from outside, with the sanitizers on, and tells what came of it.
# Fails when a target crashes, hangs, takes too much memory or breaks a promise.
# Usage: Scripts/fuzz.sh [--seconds N] [--preset NAME] [--list] [target...]
#   --seconds N    how long each target runs (60); two run at a time
#   --preset NAME  fuzz (the default), whose inputs grow by the edges that they reach, or asan,
#                  which tries changes of the kept inputs blindly but is built for the tests anyway
#   --list         only name the targets
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=60
preset=fuzz
onlyList=no
while [ $# -gt 0 ]; do
  case $1 in
    --seconds) seconds=${2:?--seconds needs a number}; shift ;;
    --preset) preset=${2:?--preset needs a name}; shift ;;
    --list) onlyList=yes ;;
    -h | --help) sed -n '2,/^set/{/^#/s/^# \?//p}' "$0"; exit 0 ;;
    -*) echo "unknown option: $1" >&2; exit 2 ;;
    *) break ;;
  esac
  shift
done

work=build/$preset/fuzz
mkdir -p "$work"
echo "Building (the messages go to $work/build.log) ..."
Scripts/build.sh "$preset" qe_fuzz_library qe_fuzz_tool >"$work/build.log" 2>&1 ||
  { cat "$work/build.log"; exit 1; }
declare -A programOf
known=()
for program in "build/$preset/bin/qe_fuzz_library" "build/$preset/bin/qe_fuzz_tool"; do
  for target in $("$program"); do
    programOf[$target]=$program
    known+=("$target")
  done
done
if [ $onlyList = yes ]; then
  printf '%s\n' "${known[@]}"
  exit 0
fi
targets=("$@")
[ $# -gt 0 ] || targets=("${known[@]}")
for target in "${targets[@]}"; do
  [ -n "${programOf[$target]:-}" ] || { echo "no such target: $target" >&2; exit 2; }
done

# Published files of the kind that a target reads, where they lie beside the repository.
published() {
  local data=../shared/data
  case $1 in
    ddl-*) echo "$data/dumps/*.${1#ddl-}.sql" ;;
    format-dbt-semantic) echo "$data/models/dbt/*.semantic_manifest.json" ;;
    format-dbt) echo "$data/models/dbt/*.manifest.json" ;;
    format-tmsl) echo "$data/models/tmsl/*.bim" ;;
    format-cube) echo "$data/models/cube/*.yml" ;;
    format-ossie) echo "$data/models/ossie/*.yaml" ;;
    format-*) echo "$data/models/${1#format-}/*.json" ;;
    batch | request | history) echo "$data/requests/spider.jsonl" ;;
  esac
}

# What is larger than the inputs may become would only be cut.
longest=65536
runTarget() {
  local target=$1 program=$2
  local found=$work/$target log=$work/$target.log
  # Weighing inputs by how rare their edges are takes longer than most targets themselves.
  local options=(-max_total_time="$seconds" -max_len="$longest" -timeout=10 -rss_limit_mb=512
                 -entropic=0 -print_final_stats=1 -keep_seed=1 -artifact_prefix="$work/$target-")
  local words=${target%%-*}
  [ "$words" != batch ] || words=request
  local dictionary=Tests/Fuzz/Dictionaries/$words.dict
  [ ! -f "$dictionary" ] || options+=(-dict="$dictionary")
  mkdir -p "$found" "$work/$target.seeds"
  # shellcheck disable=SC2046 # patterns are to be expanded
  find $(published "$target") -maxdepth 0 -size -"$((longest / 1024))"k \
    -exec cp -t "$work/$target.seeds" {} + 2>/dev/null || true
  local state=ok
  QEREFINER_FUZZ_TARGET=$target "$program" "${options[@]}" \
    "$found" "Tests/Fuzz/Corpus/$target" "$work/$target.seeds" >"$log" 2>&1 || state=FAILED
  awk -v target="$target" -v state="$state" '
    / cov: / { for (i = 1; i < NF; i++) if ($i == "cov:") edges = $(i + 1) }
    /stat::number_of_executed_units/ { executions = $2 }
    /stat::average_exec_per_sec/ { speed = $2 }
    /stat::peak_rss_mb/ { memory = $2 }
    END { printf "%-20s %12d %9d %7d %6d  %s\n", target, executions, speed, edges, memory, state }
  ' "$log"
  [ $state = ok ] && return 0
  local input
  input=$(sed -n 's/.*Test unit written to //p' "$log" | tail -1)
  printf '%s: see %s; to run it again:\n  QEREFINER_FUZZ_TARGET=%s %s %s\n' \
    "$target" "$log" "$target" "$program" "$input" >&2
  return 1
}

# Freed memory is kept back for a while to find its uses; little of it is enough here.
export ASAN_OPTIONS=${ASAN_OPTIONS:-quarantine_size_mb=32:detect_leaks=1}
export UBSAN_OPTIONS=${UBSAN_OPTIONS:-print_stacktrace=1}
unset QEREFINER_SETTINGS
printf '%-20s %12s %9s %7s %6s\n' target executions exec/s edges MB
failed=0
running=0
for target in "${targets[@]}"; do
  if [ $running -eq 2 ]; then
    wait -n || failed=1
    running=1
  fi
  runTarget "$target" "${programOf[$target]}" &
  running=$((running + 1))
done
while [ $running -gt 0 ]; do
  wait -n || failed=1
  running=$((running - 1))
done
exit $failed
