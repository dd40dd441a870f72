#!/usr/bin/env bash
# Builds the benchmarks and runs them one after the other; prints what machine this is and what they measured. All of
# them take less than ten minutes; nothing else should run meanwhile. docs/performance.md says what the figures mean.
#   scripts/bench.sh [--quick] [NAME...]    NAME: a program of bench/; all when none is given
#                                           --quick: so short that it shows only that they run
#   scripts/bench.sh --write                all of them, and their output into docs/performance.md
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

usage() { sed -n '2,6s/^# \{0,1\}//p' "$0" >&2; exit 2; }

all=(DateText_bench bench_exchange bench_read bench_library bench_deliveries bench_monitoring_reads bench_measured_reads
  bench_growth bench_requests bench_rkmon bench_stores)
declare -A short=([bench_exchange]="1 100" [bench_read]="1 1000" [bench_library]="1" [bench_deliveries]="3 10"
  [bench_monitoring_reads]="2000" [bench_measured_reads]="1" [bench_growth]="100" [bench_requests]="500 1" [bench_rkmon]="1000 1" [bench_stores]="100 1")

quick=false
write=false
names=()
while [ $# -gt 0 ]; do
  case "$1" in
    --quick) quick=true ;;
    --write) write=true ;;
    -*) usage ;;
    *) [[ " ${all[*]} " == *" $1 "* ]] || { echo "bench: no benchmark $1; there are: ${all[*]}" >&2; exit 2; }
       names+=("$1") ;;
  esac
  shift
done
# The page's figures are of one run of everything: those of different builds or machines would be compared.
if $write && { $quick || [ ${#names[@]} -gt 0 ]; }; then usage; fi
[ ${#names[@]} -gt 0 ] || names=("${all[@]}")

page=docs/performance.md
begin='<!-- scripts/bench.sh writes from here -->'
end='<!-- to here -->'
if $write && ! { grep -qxF -e "$begin" "$page" && grep -qxF -e "$end" "$page"; }; then
  echo "bench: $page has no place for the figures: lines \"$begin\" and \"$end\"" >&2
  exit 1
fi

scripts/setup.sh >&2
cmake --preset bench > /dev/null
cmake --build --preset bench >&2

version() { echo "$1 $(pkg-config --modversion "$2")"; }

machine() {
  local model memory load commit
  model=$(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -n 1)
  memory=$(awk '/^MemTotal:/ { printf "%.0f", $2 / 1048576 }' /proc/meminfo)
  load=$(cut -d ' ' -f 1 /proc/loadavg)
  commit=$(git describe --always --dirty)
  echo "${model:-unknown CPU}, $(nproc) cores, $memory GiB, $(uname -sr)," \
    "$(sed -n 's/^PRETTY_NAME="\(.*\)"$/\1/p' /etc/os-release), $(c++ -dumpfullversion -dumpversion | sed 's/^/g++ /')," \
    "$(version Qt Qt5Core), $(version libcurl libcurl), $(version simdjson simdjson)," \
    "$(version nlohmann/json nlohmann_json), $(version SQLite sqlite3); commit $commit, $(date -u +%F)," \
    "load before the first benchmark $load"
}

# A server for the one program that needs one; its first line is the folder of its socket.
start_server() {
  coproc server { exec python3 tests/support/postgres_server.py durable "$(pg_config --bindir)" $$; }
  local folder
  read -r folder <&"${server[0]}"
  server_process=$server_PID # the shell forgets its own when the process ends
  server_url="postgresql:///postgres?host=$folder&user=postgres"
}

run() {
  local name=$1 arguments=()
  if $quick; then read -ra arguments <<< "${short[$name]:-}"; fi
  if [ "$name" = bench_stores ]; then
    start_server
    arguments=("$server_url" "${arguments[@]}")
  fi
  printf '\n### %s\n\n```text\n' "$name"
  build/bench/bin/"$name" "${arguments[@]}"
  if [ "$name" = bench_stores ]; then
    kill "$server_process"
    wait "$server_process" || true
  fi
  printf '```\n'
}

results=$(mktemp)
trap 'rm -f "$results"' EXIT
{
  machine
  for name in "${names[@]}"; do
    run "$name"
  done
} | tee "$results"

if $write; then
  new=$(mktemp)
  trap 'rm -f "$results" "$new"' EXIT
  awk -v begin="$begin" -v end="$end" -v results="$results" '
    $0 == end { inside = 0 }
    !inside { print }
    $0 == begin {
      inside = 1
      print ""
      while ((getline line < results) > 0)
        print line
      print ""
    }' "$page" > "$new"
  cat "$new" > "$page"
fi
