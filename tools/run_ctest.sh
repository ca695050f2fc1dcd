#!/usr/bin/env bash
# Runs the tests of one preset, two at a time, and prints the failures and ctest's summary.
# usage: tools/run_ctest.sh PRESET     the whole log stays in build/PRESET/ctest.log
set -euo pipefail
cd "$(dirname "$0")/.."
log=build/$1/ctest.log
code=0
ctest --preset "$1" --parallel "${TARNEX_JOBS:-2}" --no-tests=error >"$log" 2>&1 || code=$?
if ((code != 0)); then
  grep -vE '^ *Start +[0-9]+:|\.\.+ +Passed +[0-9.]+ sec' "$log" || true
else
  grep -E '^[0-9]+% tests passed|^Total Test time' "$log"
fi
exit "$code"
