#!/usr/bin/env bash
# Sets up, builds everything and runs all tests.
#   scripts/test.sh [PRESET]    dev (default), asan, or tsan: only the tests of what runs in several threads
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

preset=${1:-dev}
scripts/setup.sh
cmake --preset "$preset"
cmake --build --preset "$preset"
ctest --preset "$preset"
