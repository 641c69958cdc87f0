#!/usr/bin/env bash
# Looks for data races: runs the tests of takes in several threads under ThreadSanitizer, in a build
# of its own. VTK is not instrumented; a take of a session calls none of it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install_packages.sh clang libclang-rt-14-dev llvm-14
cmake --preset threads
cmake --build --preset threads --target test_session test_cmd
for program in session/test_session cmd/test_cmd; do
  TSAN_OPTIONS="halt_on_error=1 ${TSAN_OPTIONS:-}" "build/threads/tests/$program" \
    --gtest_filter='Threads.*:Progress.*:MessageScope.*' --gtest_brief=1
done
