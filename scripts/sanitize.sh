#!/usr/bin/env bash
# Builds with AddressSanitizer and UndefinedBehaviorSanitizer and runs the tests under them. Left out
# is what looks at packages, documents, windows and speed. Arguments go to CTest.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install_packages.sh
cmake --preset sanitize
cmake --build --preset sanitize
ctest --preset sanitize -j "$(nproc)" -LE 'install|docs|windows|instructions|web' "$@"
