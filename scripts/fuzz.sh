#!/usr/bin/env bash
# Builds the fuzzers (preset fuzz) and runs each for a while, two at once at most. Needs scripts/setup.sh --checks.
#   scripts/fuzz.sh [--seconds N] [--seed S] [--keep] [TARGET...]
# TARGET: the name of a folder of tests/fuzz/corpus; all when none is given. N: seconds for each, 60 when not given.
# S: where the random choices begin, so that a run can be repeated; another place each time when not given.
# --keep: writes inputs that reach further than the committed ones into tests/fuzz/corpus, minimised.
# Ends with a table. A target that finds something makes the script fail and name the input, which is kept in
# build/fuzz/findings; `build/fuzz/bin/fuzz_TARGET FILE` repeats it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

usage() { sed -n '2,8s/^# \{0,1\}//p' "$0" >&2; exit 2; }

seconds=60
seed=0
keep=false
targets=()
while [ $# -gt 0 ]; do
  case "$1" in
    --seconds) seconds=${2:-}; [[ "$seconds" =~ ^[1-9][0-9]*$ ]] || usage; shift ;;
    --seed) seed=${2:-}; [[ "$seed" =~ ^[1-9][0-9]*$ ]] || usage; shift ;;
    --keep) keep=true ;;
    -*) usage ;;
    *) [ -d "tests/fuzz/corpus/$1" ] || { echo "fuzz: no target $1; there are: $(ls tests/fuzz/corpus | tr '\n' ' ')" >&2; exit 2; }
       targets+=("$1") ;;
  esac
  shift
done
[ ${#targets[@]} -gt 0 ] || mapfile -t targets < <(ls tests/fuzz/corpus)

cmake --preset fuzz > /dev/null
cmake --build build/fuzz --target "${targets[@]/#/fuzz_}"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
findings=build/fuzz/findings
mkdir -p "$findings"

ASAN_SYMBOLIZER_PATH=$(command -v llvm-symbolizer-14)
export ASAN_SYMBOLIZER_PATH

# Runs one target on a copy of its corpus; its findings are named after it.
run_target() {
  local target=$1 options=(-max_total_time="$seconds" -seed="$seed" -print_final_stats=1 -timeout=25 -rss_limit_mb=3000)
  local dictionary=tests/fuzz/dictionaries/$target.dict
  [ -f "$dictionary" ] && options+=(-dict="$dictionary")
  mkdir "$work/$target"
  build/fuzz/bin/"fuzz_$target" "${options[@]}" -artifact_prefix="$findings/$target-" -max_len=4096 \
    "$work/$target" "tests/fuzz/corpus/$target" > "$work/$target.log" 2>&1 || touch "$work/$target.failed"
}

# The last value of a figure that libFuzzer prints.
figure() { grep -o "$2" "$work/$1.log" | tail -n 1 | grep -o '[0-9]*$' || echo 0; }

for target in "${targets[@]}"; do
  while [ "$(jobs -rp | wc -l)" -ge 2 ]; do wait -n; done
  run_target "$target" &
done
wait

failed=0
printf '%-10s %12s %9s %9s %8s %8s\n' target runs runs/s coverage corpus crashes
for target in "${targets[@]}"; do
  crashes=0
  if [ -e "$work/$target.failed" ]; then
    crashes=1
    failed=1
  fi
  printf '%-10s %12s %9s %9s %8s %8s\n' "$target" "$(figure "$target" 'stat::number_of_executed_units: *[0-9]*')" \
    "$(figure "$target" 'stat::average_exec_per_sec: *[0-9]*')" "$(figure "$target" 'cov: [0-9]*')" \
    "$(figure "$target" 'corp: [0-9]*')" "$crashes"
done
for target in "${targets[@]}"; do
  [ -e "$work/$target.failed" ] || continue
  echo
  echo "$target:"
  grep -vE '^(#[0-9]+|INFO:|Dictionary:)' "$work/$target.log" | tail -n 40
  sed -n "s/.*Test unit written to /$target: broken by /p" "$work/$target.log"
done
if $keep; then
  for target in "${targets[@]}"; do
    build/fuzz/bin/"fuzz_$target" -merge=1 "tests/fuzz/corpus/$target" "$work/$target" > /dev/null 2>&1
  done
fi
exit "$failed"
