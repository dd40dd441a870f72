#!/usr/bin/env bash
# Starts a monitoring service of its own on this machine and works with it through rkmon, printing every command
# as a user would type it. Sets up and builds first what is missing.
#   scripts/demo.sh           stops the service at the end and removes its data
#   scripts/demo.sh --keep    leaves the service running, with its data below var/
# Every run begins with fresh data in a folder of its own, so it can be repeated at any time.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

keep=false
case "${1-}" in
  "") ;;
  --keep) keep=true ;;
  *) echo "usage: $0 [--keep]" >&2; exit 2 ;;
esac

# ---- Set-up and build: said on standard error, so that standard output is the demonstration alone -----------

scripts/setup.sh >&2
cmake --preset dev >&2
cmake --build --preset dev --target monitor-service rkmon >&2
PATH=$PWD/build/dev/bin:$PATH

mkdir -p var
work=$(mktemp -d "$PWD/var/demo.XXXXXX")
cd "$work"
umask 077 # the tokens are nobody else's
for variable in "${!RKMON_@}"; do unset "$variable"; done
export XDG_CONFIG_HOME=$work # a configuration of the caller's would mix in

service=
stop_service() {
  [ -n "$service" ] || return 0
  local stopped=$service
  service=
  kill -TERM "$stopped" 2>/dev/null || true
  wait "$stopped" # its status: 0 after a clean stop
}
clean_up() {
  local status=$?
  trap - EXIT
  stop_service || status=1
  [ "$status" -eq 0 ] || cat service.log >&2 2>/dev/null || true
  cd ..
  rm -rf "$work"
  exit "$status"
}
trap clean_up EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

# ---- Printing commands as they would be typed ---------------------------------------------------------------

as_typed() {
  local word line=
  for word in "$@"; do
    [[ $word =~ ^[A-Za-z0-9_./:=,@+-]+$ ]] || word="'${word//\'/\'\\\'\'}'"
    line+="${line:+ }$word"
  done
  printf '$ %s' "$line"
}

heading() { printf '\n# %s\n' "$1"; }

# show STATUS COMMAND...: prints the command and what it prints, and insists on its exit status.
show() {
  local expected=$1 status=0
  shift
  as_typed "$@"
  printf '\n'
  "$@" 2>&1 || status=$?
  [ "$status" -eq 0 ] || printf '(exit status %d)\n' "$status"
  [ "$status" -eq "$expected" ] || { echo "demo: expected exit status $expected" >&2; return 1; }
}

# keep_output VARIABLE COMMAND...: the same for a command whose only output is needed later.
keep_output() {
  local -n kept=$1
  shift
  as_typed "$@"
  printf '\n'
  kept=$("$@")
  printf '%s\n' "$kept"
}

# id_of COMMAND...: the identifier in the first row of a list.
id_of() { "$@" --csv | sed -n '2s/,.*//p'; }

admin=(monitor-service admin --data site.db)

# make_token OWNER FILE ROLE: the token goes into the file, and may then do what the role says.
make_token() {
  local id
  as_typed "${admin[@]}" token create --owner "$1"
  printf ' > %s\n' "$2"
  "${admin[@]}" token create --owner "$1" 2>token.message >"$2"
  cat token.message
  id=$(sed -n 's/^token \([0-9a-f]*\) of .*/\1/p' token.message)
  rm token.message
  show 0 "${admin[@]}" grant --token "$id" --project "$project" --role "$3"
}

# ---- The demonstration --------------------------------------------------------------------------------------

heading "The operator makes a project, categories and tokens"
keep_output project "${admin[@]}" project create --name 'Coastal bluff' --time-zone America/Los_Angeles
show 0 "${admin[@]}" category add 'Landslide slope' 'Retaining wall' 'Building pit'
for quantity in 'Soil moisture/SM' Rainfall/RF 'Air temperature/AT'; do
  show 0 "${admin[@]}" subcategory create --project "$project" --category 'Landslide slope' \
    --name "${quantity%/*}" --alias "${quantity#*/}"
done
make_token Ana editor.token editor
make_token Ben reader.token reader

heading "The service starts on a free port of this machine"
as_typed monitor-service serve --data site.db --listen 127.0.0.1:0
printf ' &\n'
mkfifo announcement
monitor-service serve --data site.db --listen 127.0.0.1:0 </dev/null >announcement 2>service.log &
service=$!
exec {announced}<announcement
read -r line <&"$announced" || { echo "demo: the service did not start" >&2; exit 1; }
rm announcement
echo "$line"

heading "An engineer says once where the service is"
address=${line##* }
for setting in TZ=America/Los_Angeles "RKMON_BASE_API=$address" "RKMON_PROJECT=$project" RKMON_TOKEN_FILE=editor.token; do
  as_typed export "$setting"
  printf '\n'
  export "${setting?}"
done

heading "What can be monitored"
show 0 rkmon category list
show 0 rkmon subcategory list 'Landslide slope'

heading "The five stations become monitorings"
declare -A station
for name in VH LS-a LS-b M1 M2; do
  keep_output created rkmon monitoring create --name "$name" --category 'Landslide slope'
  station[$name]=$created
done
show 0 rkmon monitoring list

heading "One is changed; only what differs is sent"
show 0 rkmon monitoring update "${station[LS-b]}" --alarm-to ana,ben
show 0 rkmon monitoring update "${station[LS-b]}" --alarm-to ana,ben

heading "Names, pages and counts"
show 0 rkmon monitoring name "${station[VH]}" "${station[LS-b]}"
show 0 rkmon monitoring list --skip 2 --limit 2
show 0 rkmon monitoring list --name '^ls-' --csv
show 0 rkmon monitoring count
show 0 rkmon monitoring count --name '^ls-'
show 0 rkmon monitoring count --exact-name LS-a
show 0 rkmon monitoring count --until 2015-12-31
show 0 rkmon monitoring show "${station[M1]}" --json

heading "What the editor's and the reader's token permit"
show 0 rkmon can create 'Landslide slope'
show 0 rkmon can delete 'Landslide slope'
show 3 rkmon can create 'Landslide slope' --token-file reader.token

heading "A refusal, and something that is not there"
show 3 rkmon monitoring create --name VH2 --category 'Landslide slope' --token-file reader.token
show 4 rkmon monitoring show 000000000000000000000000

[ "$(rkmon monitoring count)" = 5 ] || { echo "demo: five monitorings were expected" >&2; exit 1; }

heading "Two weeks of readings come in: 22 deliveries, and the limits of three groups of probes"
samples=(rkmon point import --project-file ../../samples/coastal-bluff/project.json)
show 0 "${samples[@]}"
show 0 rkmon group list
show 0 rkmon data list

heading "The same again: nothing doubles"
show 0 "${samples[@]}"
show 0 rkmon data history "$(id_of rkmon data list --cell LS-a)"

heading "Points, and the statistics of each day"
show 0 rkmon point list --cell LS-a
show 0 rkmon stats normal --cell LS-a --name LS-a-W1
show 0 rkmon stats normal --cell LS-a --name LS-a-W1 --draw
show 0 rkmon stats depth --cell VH --since 2015-12-21 --until 2015-12-21

heading "The rain of 21 December raised alarms"
show 0 rkmon alarm list
for alarm in $(rkmon alarm list --csv | sed '1d; s/,.*//'); do
  show 0 rkmon alarm detail "$alarm"
done

heading "Charts for the report"
show 0 rkmon stats normal --cell LS-a --sub-category SM --values cumulative --unit V --plot moisture.svg
show 0 rkmon stats depth --cell LS-a --name LS-a-W1 --name LS-a-W3 --name LS-a-W5 --plot depth.png --unit V --depth-unit cm
[ -z "${DEMO_CHARTS-}" ] || cp moisture.svg depth.png "$DEMO_CHARTS"

heading "One delivery is deleted with everything that came with it"
show 0 rkmon data delete "$(id_of rkmon data list --cell M2)" --yes
show 0 rkmon point list --cell M2

if $keep; then
  trap - EXIT
  heading "The service keeps running at $address"
  printf 'cd %q\n' "$work"
  printf 'export RKMON_BASE_API=%q RKMON_PROJECT=%q RKMON_TOKEN_FILE=editor.token\n' "$address" "$project"
  printf 'export PATH=%q:$PATH\n' "${PATH%%:*}"
  printf 'kill %d    # stops it; then remove %q\n' "$service" "$work"
else
  heading "The service is stopped"
  stop_service
  echo "stopped cleanly, nothing left running"
fi
