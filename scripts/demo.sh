#!/usr/bin/env bash
# Sets up, builds zvkit and plays a day of the app against the emulator. Arguments go to zvkit, for example: -v
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh build
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1 # so that tests/package/run.sh finds these objects
cmake --preset dev >/dev/null
cmake --build --preset dev -j 2 --target zvkit >&2
exec build/dev/tools/zvkit/zvkit demo "$@"
