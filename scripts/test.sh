#!/usr/bin/env bash
# Sets up, builds everything and runs all tests.
#   scripts/test.sh [PRESET]    dev (default), asan, or tsan: only the tests of what runs in several threads
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

preset=${1:-dev}
if [ "$preset" = dev ]; then scripts/setup.sh; else scripts/setup.sh --checks; fi # clang comes with the checks
cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset"
