#!/usr/bin/env bash
# Sets up, builds with g++ and runs every test. Arguments go to ctest, for example: scripts/test.sh -R Keychain
# The last line is "N passed, N failed".
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh test
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1 # so that tests/package/run.sh finds these objects
cmake --preset dev >/dev/null
cmake --build --preset dev -j 2

log=build/dev/test.log
result=0
ctest --preset dev --no-tests=error "$@" | tee "$log" || result=$?
read -r failed total < <(sed -nE 's/.*tests passed, ([0-9]+) tests? failed out of ([0-9]+)$/\1 \2/p' "$log") || true
echo "$((${total:-0} - ${failed:-0})) passed, ${failed:-0} failed"
exit "$result"
