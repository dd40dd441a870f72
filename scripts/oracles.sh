#!/usr/bin/env bash
# What the service's query language is compared on: the matcher with other implementations of the language, which it
# installs from npm into tests/oracle/node_modules, and SQL's narrowing with the matcher. Shows the figures.
# RK_TEST_LONG=1: twenty and ten times as much. RK_TEST_SEED: other pairs for the former.
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
cmake --build --preset "$preset" --target where_verdicts service_store_sql_test
ctest --preset "$preset" --tests-regex '^(WhereOracles$|NarrowingAgreement\.)' --verbose
