#!/usr/bin/env bash
# The checks that take too long for every change, to be run before a release and after work on the engine
# or the kernel: names by the linter, rays against exact maps, the same bytes from four builds, the tests
# under sanitizers, and the fuzzers. Rays take an hour; without a compiler cache the others build five
# times, which takes more than an hour on two cores.
# Usage: scripts/long_checks.sh [SECONDS]      (20 seconds for each fuzzer by default)
set -euo pipefail
cd "$(dirname "$0")/.."
[ -f build/release/compile_commands.json ] || cmake --preset release

scripts/stage.sh "format, layers, reference, names" scripts/lint.sh --names
scripts/stage.sh "rays against exact maps" scripts/check_rays.sh
scripts/stage.sh "same bytes from four builds" scripts/check_bits.sh
scripts/stage.sh "tests under sanitizers" scripts/sanitize.sh
scripts/stage.sh "fuzzers" scripts/fuzz.sh "${1:-20}"
