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

# The analysis needs how each file is compiled: a tree of its own, which is configured for clang and never built.
cmake --preset dev -B build/analysis -DCMAKE_CXX_COMPILER=clang++-14 -DRKMONITORINGDATA_BUILD_TESTS=OFF > /dev/null
scripts/analyse.py build/analysis
