#!/usr/bin/env bash
# Asks a running monitoring service whether it keeps the contract: every operation of the library, through the
# library. --help says more.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

usage() {
  cat << 'END'
usage: scripts/contract.sh --base-api URL --token-file FILE [--project ID] [option...] [-- GoogleTest option...]

Runs every operation of the library against the service at URL: what is written must come back, what is counted be
what is paged, and what is forbidden be refused. Everything that it creates has a name that begins with "contract-"
and digits by chance, and is removed at the end; nothing else in the project is touched.

  --base-api URL             address of the service, as in http://127.0.0.1:8600/
  --project ID               project to work in, from RKMON_PROJECT when absent; it has a sub-category in a category
                             where the token may create, edit and delete
  --token-file FILE          file of a token that may read, create, edit and delete in the project
  --reader-token-file FILE   file of a token that may only read there; without it what needs one is skipped
  --ca-file FILE             certificates to trust instead of the system's
  --build-dir DIR            a folder where everything is built; without it, the suite is built first
  --help                     this text

Exit status: 0 the contract is kept, 1 it is not, or something could not be removed, 2 wrong option or file, 3 the
service refuses the token or does not permit enough, 5 no answer.
END
}

fail() { # fail STATUS TEXT
  echo "contract: $2" >&2
  exit "$1"
}

base_api='' project=${RKMON_PROJECT-} token_file='' reader_token_file='' ca_file='' build_dir=''
while [ $# -gt 0 ]; do
  case $1 in
    --help | -h) usage; exit 0 ;;
    --) shift; break ;;
    --base-api | --project | --token-file | --reader-token-file | --ca-file | --build-dir)
      [ -n "${2-}" ] || fail 2 "$1 needs a value"
      name=${1#--}
      printf -v "${name//-/_}" '%s' "$2"
      shift 2
      ;;
    *) fail 2 "unknown option \"$1\"; --help lists those there are" ;;
  esac
done
[ -n "$base_api" ] || fail 2 "--base-api is missing"
[ -n "$token_file" ] || fail 2 "--token-file is missing"
[ -n "$project" ] || fail 2 "--project is missing, and RKMON_PROJECT is not set"
for file in "$token_file" "$reader_token_file" "$ca_file"; do
  [ -z "$file" ] || [ -r "$file" ] || fail 2 "cannot read \"$file\""
done

if [ -z "$build_dir" ]; then
  build_dir=$here/build/dev
  (cd "$here" && scripts/setup.sh && cmake --preset dev && cmake --build --preset dev --target contract_test) >&2
fi
suite=$build_dir/bin/contract_test
[ -x "$suite" ] || fail 2 "there is no $suite: build the target contract_test"

export RK_CONTRACT_BASE_API=$base_api RK_CONTRACT_PROJECT=$project RK_CONTRACT_TOKEN_FILE=$token_file
export RK_CONTRACT_READER_TOKEN_FILE=$reader_token_file RK_CONTRACT_CA_FILE=$ca_file
RK_CONTRACT_RUN=contract-$(od -An -N8 -tx8 /dev/urandom | tr -d ' ')
export RK_CONTRACT_RUN

status=0
trap 'status=130' INT
trap 'status=143' TERM
"$suite" "$@" || { code=$?; [ "$status" -ne 0 ] || status=$code; }
trap - INT TERM
if [ "$status" -ge 128 ]; then
  # It did not come to its end: without any test it only removes what bears the mark of the run.
  echo "contract: ended early; removing what was created" >&2
  "$suite" --gtest_filter=-'*' > /dev/null || exit
fi
exit "$status"
