#!/usr/bin/env bash
# The same bytes from g++ and clang++, debug and release: builds all four and runs, in each, the
# shots and single results that must come out. Takes long; not part of scripts/test.sh.
set -euo pipefail
cd "$(dirname "$0")/.."
for preset in release debug clang-release clang-debug; do
  echo "== $preset"
  cmake --preset "$preset" >/dev/null
  cmake --build "build/$preset"
  (cd "build/$preset" && ctest -R 'golden|vectors' --output-on-failure)
done
