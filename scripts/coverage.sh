#!/usr/bin/env bash
# Line coverage of src/ by the tests; the table goes to build/coverage/coverage.txt.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset coverage
cmake --build build/coverage
(cd build/coverage && ctest --output-on-failure -j "$(nproc)")
gcovr --root . --filter 'src/' --object-directory build/coverage --txt build/coverage/coverage.txt \
      --print-summary
