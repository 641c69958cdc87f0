#!/usr/bin/env bash
# Reports whether programs built against an earlier Lumivane still run with this one.
#
# scripts/check_abi.sh [BUILD_DIR]        fails if a symbol listed in cmake/abi/ is gone (quick)
# scripts/check_abi.sh --adopt [BUILD_DIR]  takes this build's symbols as the list: with a new
#                                         version, or after additions
# scripts/check_abi.sh --against GIT_REF  builds both with debug information and compares layouts,
#                                         signatures and virtual tables (needs abigail-tools)
set -euo pipefail
cd "$(dirname "$0")/.."
lists=cmake/abi

# What a library defines for others and is no template of another library's.
symbols() {
  nm -D --defined-only "$1" | awk '$2 ~ /^[TBDRV]$/ { print $3 }' | c++filt |
    grep -E '^((vtable|typeinfo|typeinfo name) for )?(Lumivane|Jzon)::' | LC_ALL=C sort -u
}

libraries() { find "$1/src" -name 'liblumivane*.so' | sort; }

compare() {
  local build=$1 status=0 library list gone
  for library in $(libraries "$build"); do
    list=$lists/$(basename "$library").symbols
    [ -e "$list" ] || { echo "abi: no list for $library; --adopt makes one"; status=1; continue; }
    gone=$(symbols "$library" | LC_ALL=C comm -23 "$list" -)
    if [ -n "$gone" ]; then
      printf 'abi: gone from %s:\n%s\n' "$(basename "$library")" "$gone"
      echo "abi: put it back, or raise the version (its first two numbers name the library's file)" \
           "and run scripts/check_abi.sh --adopt"
      status=1
    else
      echo "abi: $(basename "$library") has all $(wc -l < "$list") listed symbols"
    fi
  done
  return $status
}

adopt() {
  local library
  mkdir -p "$lists"
  for library in $(libraries "$1"); do
    symbols "$library" > "$lists/$(basename "$library").symbols"
    wc -l "$lists/$(basename "$library").symbols"
  done
}

build_with_debug() {  # build_with_debug SOURCE BUILD
  cmake -S "$1" -B "$2" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DLUMIVANE_BUILD_TESTS=OFF \
    -DLUMIVANE_BUILD_HOST=OFF >/dev/null
  cmake --build "$2"
}

against() {
  local ref=$1 work=$PWD/build/abi library other status=0
  command -v abidiff >/dev/null || { echo "Please install abigail-tools" >&2; exit 2; }
  rm -rf "$work" && mkdir -p "$work/source"
  git archive "$ref" | tar -x -C "$work/source"
  build_with_debug "$work/source" "$work/then"
  build_with_debug "$PWD" "$work/now"
  for library in $(libraries "$work/then"); do
    other=$work/now/${library#"$work/then/"}
    echo "abi: $(basename "$library"), $ref and now"
    abidiff --headers-dir1 "$work/source/include" --headers-dir2 include \
      --drop-private-types "$library" "$other" || status=$?
  done
  # abidiff's bit 8 says incompatible, bit 4 only changed, 1 and 2 that it could not be done.
  [ $((status & 11)) -eq 0 ]
}

case ${1:-} in
  --against) against "${2:?a commit, tag or branch}" ;;
  --adopt) adopt "${2:-build/release}" ;;
  *) compare "${1:-build/release}" ;;
esac
