#!/usr/bin/env bash
# Checks format, layers, the reference's comments (with doxygen installed) and clang-tidy: scripts/lint.sh [BUILD_DIR]
# BUILD_DIR (default build/release) must hold a compile_commands.json.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}

mapfile -t files < <(git ls-files '*.cpp' '*.h' '*.ipp')
clang-format --dry-run -Werror "${files[@]}"
echo "format: ${#files[@]} files"
scripts/check_layers.py
if command -v doxygen >/dev/null; then
  mkdir -p build
  doxygen docs/Doxyfile
  echo "doxygen: no warnings"
fi

mapfile -t sources < <(git ls-files 'src/*.cpp' 'host/*.cpp' 'examples/*.cpp' 'tests/*.cpp' \
                       | grep -v '^tests/install/')
printf '%s\n' "${sources[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy -p "$build" --quiet
echo "clang-tidy: ${#sources[@]} files"
