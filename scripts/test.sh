#!/usr/bin/env bash
# Builds Lumivane in release and runs all tests. Installs missing packages first. The exit status
# is 0 only if every test passes. Further arguments go to CTest, e.g. "-L golden".
set -uo pipefail
cd "$(dirname "$0")/.." || exit 1

scripts/install_packages.sh || exit 1
cmake --preset release || exit 1
cmake --build --preset release || exit 1

log=$PWD/build/release/test-summary.txt
ctest --preset release -j "$(nproc)" "$@" | tee "$log"
status=${PIPESTATUS[0]}

echo
echo "Summary"
grep -E 'tests passed|^Total Test time|\((Failed|Timeout|SEGFAULT|Not Run|Subprocess aborted|Child aborted)\)' "$log"
[ "$status" -eq 0 ] && echo "All tests passed." || echo "There are failures; the whole log: $log"
exit "$status"
