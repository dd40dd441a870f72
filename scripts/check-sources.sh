#!/usr/bin/env bash
# Formatting of all sources, the directions of their dependencies, and static analysis of those that ship; all must find
# nothing.
#   scripts/check-sources.sh [--fast]    --fast: without the analysis, which takes minutes
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

case "$#:${1:-}" in
  0:) fast=false ;;
  1:--fast) fast=true ;;
  *) sed -n '2,4s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
esac

mapfile -t sources < <(git ls-files '*.h' '*.cpp')
clang-format-14 --dry-run -Werror "${sources[@]}"
echo "clang-format: ${#sources[@]} files as they should be"

scripts/check-layers.py
if $fast; then exit 0; fi

# The analysis reads the list of a tree of its own, which is configured and never built: without precompiled headers, which
# clang cannot read, and without tests. Files that go into several targets are in it once.
cmake --preset dev -B build/tidy -DRKMONITORINGDATA_BUILD_TESTS=OFF -DRKMONITORINGDATA_PRECOMPILED_HEADERS=OFF > /dev/null
python3 - "$PWD" build/tidy/compile_commands.json << 'END'
import json
import sys

root, name = sys.argv[1:]
shipped = tuple(f"{root}/{folder}/" for folder in ("apps", "companions", "service", "src"))
with open(name, encoding="utf-8") as file:
    commands = {entry["file"]: entry for entry in json.load(file) if entry["file"].startswith(shipped)}
# The applications first: they take longest, and at the end nothing long should be left for one core.
with open(name, "w", encoding="utf-8") as file:
    json.dump([commands[source] for source in sorted(commands)], file, indent=1)
END
run-clang-tidy-14 -quiet -j "$(nproc)" -p build/tidy > build/clang-tidy.log 2>&1 ||
  { grep -E 'error:|warning:' build/clang-tidy.log || tail -n 40 build/clang-tidy.log; exit 1; }
echo "clang-tidy: nothing found in $(grep -c '"file":' build/tidy/compile_commands.json) files"
