#!/usr/bin/env bash
# Runs the tests under AddressSanitizer and UndefinedBehaviorSanitizer, each test program in two
# halves, in the build that the fuzzers share. Left out is what looks at packages, documents,
# windows, browsers and speed, and the whole reference pipeline, which is slow as it is. Arguments go to
# CTest.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install_packages.sh clang libclang-rt-14-dev llvm-14
cmake --preset fuzz -DLUMIVANE_BUILD_TESTS=ON -DLUMIVANE_TESTS_BY_PROGRAM=ON
cmake --build --preset fuzz
ctest --test-dir build/fuzz --output-on-failure -j "$(nproc)" \
  -LE 'install|docs|windows|instructions|web|plain' -E browser "$@"
