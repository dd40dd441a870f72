#!/usr/bin/env bash
# Formatting of all sources and static analysis of those that ship; both must find nothing. Needs a configured
# build/dev.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

mapfile -t sources < <(git ls-files '*.h' '*.cpp')
clang-format-14 --dry-run -Werror "${sources[@]}"
echo "clang-format: ${#sources[@]} files as they should be"

# The analysis reads the build's list of compiled files, and of those only ours that it holds.
run-clang-tidy-14 -quiet -j "$(nproc)" -p build/dev "^$PWD/(src|companions|service|apps)/" > build/clang-tidy.log 2>&1 ||
  { grep -E 'error:|warning:' build/clang-tidy.log || tail -n 40 build/clang-tidy.log; exit 1; }
echo "clang-tidy: nothing found"
