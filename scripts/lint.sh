#!/usr/bin/env bash
# Checks format, layers and clang-tidy: scripts/lint.sh [BUILD_DIR]
# BUILD_DIR (default build/release) must hold a compile_commands.json.
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/release}

mapfile -t files < <(git ls-files '*.cpp' '*.h' '*.ipp')
clang-format --dry-run -Werror "${files[@]}"
echo "format: ${#files[@]} files"
scripts/check_layers.py

mapfile -t sources < <(git ls-files 'src/*.cpp' 'host/*.cpp' 'examples/*.cpp' 'tests/*.cpp' \
                       | grep -v '^tests/install/')
printf '%s\n' "${sources[@]}" | xargs -P "$(nproc)" -n 4 clang-tidy -p "$build" --quiet
echo "clang-tidy: ${#sources[@]} files"
