#!/usr/bin/env bash
# Counts the instructions of the client's hot paths under callgrind and compares them with bench/callgrind/counts.txt:
# unlike times, counts are the same on a busy machine. Fails when one has risen by more than 10 %; says when one has
# fallen by as much. Needs scripts/setup.sh --checks.
#   scripts/instruction-counts.sh [--update]    --update: writes the counts instead of comparing them
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

update=false
case "$#:${1:-}" in
  0:) ;;
  1:--update) update=true ;;
  *) sed -n '2,5s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
esac

command -v valgrind > /dev/null || { echo "instruction-counts: no valgrind; scripts/setup.sh --checks installs it" >&2; exit 1; }

counts=bench/callgrind/counts.txt
tolerance=10
cmake --preset bench > /dev/null
cmake --build build/bench --target hot_paths > /dev/null || { cmake --build build/bench --target hot_paths; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Runs a path with nothing of the caller's environment: neither locale, time zone nor hash seed may matter.
count_path() {
  local repetitions total
  repetitions=$(env -i PATH="$PATH" HOME="$work" LC_ALL=C.UTF-8 TZ=UTC QT_HASH_SEED=0 \
    valgrind --tool=callgrind --instr-atstart=no --callgrind-out-file="$work/$1.out" --log-file="$work/$1.log" \
    build/bench/bin/hot_paths "$1") || { cat "$work/$1.log" >&2; return 1; }
  total=$(sed -n 's/^totals: \([0-9]*\)$/\1/p' "$work/$1.out")
  [ "${total:-0}" -gt 0 ] || { echo "instruction-counts: nothing was counted of $1" >&2; return 1; }
  printf '%-18s %10d\n' "$1" $((total / repetitions))
}

# As many at once as there are cores; a count does not depend on what else runs.
build/bench/bin/hot_paths > "$work/paths"
while read -r path; do
  while [ "$(jobs -rp | wc -l)" -ge "$(nproc)" ]; do wait -n; done
  count_path "$path" > "$work/$path.count" &
done < "$work/paths"
for job in $(jobs -p); do wait "$job"; done
while read -r path; do
  cat "$work/$path.count"
done < "$work/paths" > "$work/counts"

if $update; then
  { grep '^#' "$counts"; cat "$work/counts"; } > "$work/file"
  cat "$work/file" > "$counts"
  cat "$work/counts"
  exit 0
fi

awk -v tolerance="$tolerance" -v file="$counts" '
  /^#/ || NF == 0 { next }
  FNR == NR { known[$1] = $2; next }
  {
    measured[$1] = 1
    if (!($1 in known)) {
      printf "%-18s %10d  is not in %s: run scripts/instruction-counts.sh --update\n", $1, $2, file
      bad = 1
      next
    }
    change = 100 * ($2 - known[$1]) / known[$1]
    verdict = ""
    if (change > tolerance) {
      verdict = "  RISEN: at most +" tolerance " % is allowed"
      bad = 1
    } else if (change < -tolerance)
      verdict = "  fallen: hold on to it with scripts/instruction-counts.sh --update"
    printf "%-18s %10d  was %10d  %+7.1f %%%s\n", $1, $2, known[$1], change, verdict
  }
  END {
    for (name in known)
      if (!(name in measured)) {
        printf "%-18s in %s is not measured any more: run scripts/instruction-counts.sh --update\n", name, file
        bad = 1
      }
    if (bad)
      print "instruction-counts: failed" > "/dev/stderr"
    exit bad
  }' "$counts" "$work/counts"
