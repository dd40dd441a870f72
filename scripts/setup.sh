#!/usr/bin/env bash
# Installs the Debian packages that building, testing and running need; what is there already stays as it is.
#   scripts/setup.sh            what the build, the tests and the demonstration need
#   scripts/setup.sh --checks   and the tools of the source checks, the instruction counts and the fuzzers
#   scripts/setup.sh --oracles  and what runs the other implementations of the query language
set -euo pipefail

packages=(
  g++ cmake ninja-build pkg-config
  qtbase5-dev libcurl4-openssl-dev zlib1g-dev                       # library and companions
  libboost1.81-dev libsimdjson-dev libpcre2-dev libsqlitecpp-dev libpq-dev # service
  libsqlite3-dev libssl-dev libhowardhinnant-date-dev nlohmann-json3-dev tzdata
  libcli11-dev libutf8proc-dev                                      # command lines
  liborcus-dev                                                      # spreadsheets
  libqwt-qt5-dev libqt5svg5-dev fonts-dejavu-core fonts-wqy-microhei # charts
  libgtest-dev libgmock-dev python3 python3-aiosmtpd                # tests
  postgresql-15 haproxy                                             # the servers that some of them start for themselves
)
if [ "${1:-}" = --checks ]; then
  packages+=(clang-format-14 clang-tidy-14 clang-14 libclang-rt-14-dev llvm-14 valgrind)
fi
# A Node.js of another maker brings npm along and does not go together with Debian's npm.
if [ "${1:-}" = --oracles ] && ! { command -v node && command -v npm; } >/dev/null; then
  packages+=(nodejs npm)
fi

if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
  echo "setup: this is not a Debian system. Install what these Debian 12 packages hold, then build with CMake:" >&2
  printf '  %s\n' "${packages[@]}" >&2
  exit 1
fi

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing+=("$package")
done
if [ ${#missing[@]} -eq 0 ]; then
  echo "setup: all ${#packages[@]} packages are installed"
  exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  command -v sudo >/dev/null || { echo "setup: run as root, or install: ${missing[*]}" >&2; exit 1; }
  as_root=(sudo)
fi
echo "setup: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
echo "setup: done"
