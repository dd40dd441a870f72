#!/usr/bin/env bash
# Builds applications from the install tree of preset dev, as our users would: one with the bundled companions, run against
# the installed service, and one with companions of its own.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

work=$(mktemp -d)
service=
cleanup() {
  if [ -n "$service" ]; then kill "$service" 2>/dev/null || true; wait "$service" 2>/dev/null || true; fi
  rm -rf "$work"
}
trap cleanup EXIT

quietly() { "$@" > "$work/log" 2>&1 || { cat "$work/log"; return 1; }; }
build() { # build SOURCE BINARY [CMAKE OPTIONS]
  local source=$1 binary=$2
  shift 2
  quietly cmake -S "$source" -B "$binary" -G Ninja -DCMAKE_BUILD_TYPE=Release "$@"
  quietly cmake --build "$binary"
}

echo "consumer: with the bundled companions"
quietly cmake --preset dev
quietly cmake --build --preset dev
quietly cmake --install build/dev --prefix "$work/prefix"
build tests/consumer/example "$work/example" -DCMAKE_PREFIX_PATH="$work/prefix"
# The packages ask for no later C++ than the example does.
grep -q -- '-std=c++11 ' "$work/example/compile_commands.json"

bin="$work/prefix/bin"
store="$work/monitoring.db"
admin() { "$bin/monitor-service" admin --data "$store" "$@"; }
project=$(admin project create --name Example --time-zone Europe/Berlin)
admin category add pit
token_line=$(admin token create --owner example)
admin grant --token "$(admin token list --json | sed -n 's/.*"_\{0,1\}id": *"\([0-9a-f]*\)".*/\1/p' | head -n 1)" \
  --project "$project" --role editor
umask 077
printf '%s\n' "$token_line" > "$work/token"
"$bin/monitor-service" serve --data "$store" --listen 127.0.0.1:0 > "$work/service.out" &
service=$!
for _ in $(seq 100); do
  address=$(sed -n 's/.*listening on \(http[^ ]*\).*/\1/p' "$work/service.out")
  [ -n "$address" ] && break
  sleep 0.1
done
"$bin/rkmon" --base-api "$address" --project "$project" --token-file "$work/token" \
  monitoring create --name "Pit K1" --category pit > /dev/null
"$work/example/example" "$address" "$project" "$token_line" | tee "$work/answer"
grep -q '^[0-9a-f]\{24\}  Pit K1$' "$work/answer"

echo "consumer: with companions of its own"
build tests/consumer/foreign/companions "$work/companions"
quietly cmake --install "$work/companions" --prefix "$work/foreign"
build . "$work/library" -DCMAKE_PREFIX_PATH="$work/foreign" -DRKMONITORINGDATA_BUNDLED_COMPANIONS=OFF \
  -DRKMONITORINGDATA_PROJECT_ACCESSOR=currentProject -DRKMONITORINGDATA_BUILD_SERVICE=OFF \
  -DRKMONITORINGDATA_BUILD_TOOLS=OFF -DRKMONITORINGDATA_BUILD_TESTS=OFF
quietly cmake --install "$work/library" --prefix "$work/foreign"
build tests/consumer/foreign/application "$work/application" -DCMAKE_PREFIX_PATH="$work/foreign"
"$work/application/foreign_application"
