#!/usr/bin/env bash
# Checks format, layers, the reference's comments and, unless --quick, what cppcheck and clang-tidy
# think. What they are not to tell stands, with its reason, in scripts/cppcheck.supp and .clang-tidy.
# Usage: scripts/lint.sh [--quick] [BUILD_DIR]
# BUILD_DIR (default build/release) must hold a compile_commands.json for clang-tidy.
set -euo pipefail
cd "$(dirname "$0")/.."
quick=no
if [ "${1:-}" = --quick ]; then
  quick=yes
  shift
fi
build=${1:-build/release}
scripts/install_packages.sh clang-format doxygen

mapfile -t files < <(git ls-files '*.cpp' '*.h' '*.ipp')
clang-format --dry-run -Werror "${files[@]}"
echo "format: ${#files[@]} files"
scripts/check_layers.py
scripts/docs.sh
[ "$quick" = no ] || exit 0

scripts/install_packages.sh clang-tidy cppcheck
# Not the tests: it takes the test library's macros for functions.
cppcheck --quiet --library=googletest --std=c++17 --enable=warning,performance,portability --inline-suppr \
  --suppressions-list=scripts/cppcheck.supp --error-exitcode=1 -j "$(nproc)" \
  -I include -I src -I host -I bench -I tests src host examples bench fuzz
echo "cppcheck: clean"

mapfile -t sources < <(git ls-files 'src/*.cpp' 'host/*.cpp' 'examples/*.cpp' 'tests/*.cpp' \
                       | grep -v '^tests/install/')
printf '%s\n' "${sources[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy -p "$build" --quiet
echo "clang-tidy: ${#sources[@]} files"
