#!/usr/bin/env bash
# Compares the service's query language with other implementations of it, which it installs from npm into
# tests/oracle/node_modules. Needs a configured preset. RK_TEST_LONG=1: with twenty times as many documents.
#   scripts/oracles.sh [PRESET]    dev (default) or asan
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

preset=${1:-dev}
scripts/setup.sh --oracles
# The lock file pins contents by hash; from where they come is up to npm's configuration.
if grep -q '"resolved"' tests/oracle/package-lock.json; then
  echo "oracles: tests/oracle/package-lock.json names a host" >&2
  exit 1
fi
(cd tests/oracle && npm ci --ignore-scripts --no-audit --no-fund)
cmake --preset "$preset" > /dev/null # the test exists from now on
cmake --build --preset "$preset" --target where_verdicts
ctest --preset "$preset" --tests-regex '^WhereOracles$' --verbose
