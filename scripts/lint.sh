#!/usr/bin/env bash
# Checks format, layers, the reference's comments and, unless --quick, what cppcheck and clang-tidy
# report; with --names, of the latter only the names of all that is built of src, host and include.
# Suppressed findings stand, each with its reason, in scripts/cppcheck.supp and .clang-tidy.
# Usage: scripts/lint.sh [--quick | --names] [BUILD_DIR]
# BUILD_DIR (default build/release) must hold a compile_commands.json for clang-tidy.
set -euo pipefail
cd "$(dirname "$0")/.."
mode=all
case ${1:-} in
  --quick | --names)
    mode=${1#--}
    shift
    ;;
esac
build=${1:-build/release}
scripts/install_packages.sh clang-format doxygen

mapfile -t files < <(git ls-files '*.cpp' '*.h' '*.ipp')
clang-format --dry-run -Werror "${files[@]}"
echo "format: ${#files[@]} files"
scripts/check_layers.py
scripts/docs.sh
[ "$mode" != quick ] || exit 0

if [ "$mode" = names ]; then
  scripts/install_packages.sh clang-tidy
  # Sources of components that are not built have no compile command.
  mapfile -t sources < <(git ls-files 'src/*.cpp' 'host/*.cpp' |
    while read -r file; do
      if grep -q "/$file\"" "$build/compile_commands.json"; then echo "$file"; fi
    done)
  [ ${#sources[@]} -gt 100 ] || { echo "lint: $build knows ${#sources[@]} sources" >&2; exit 1; }
  printf '%s\n' "${sources[@]}" |
    xargs -P "$(nproc)" -n 4 clang-tidy -p "$build" --quiet --checks='-*,readability-identifier-naming'
  echo "names: ${#sources[@]} files and the headers that they include"
  exit 0
fi

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
