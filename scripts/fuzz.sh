#!/usr/bin/env bash
# Builds the fuzzers and runs each, from its corpus and from the tests' data.
# Usage: scripts/fuzz.sh [SECONDS [FUZZER...]]      (20 seconds each by default)
# New inputs are kept in build/fuzz/corpus; a failing one is named and kept in build/fuzz/found.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-20}
shift || true
fuzzers=("$@")
[ ${#fuzzers[@]} -gt 0 ] || fuzzers=(json scene shot json5 arguments relations graph loops)

scripts/install_packages.sh clang libclang-rt-14-dev llvm-14
cmake --preset fuzz
cmake --build --preset fuzz --target "${fuzzers[@]/#/fuzz_}"

build=$PWD/build/fuzz
golden=$PWD/tests/data/golden
seeds() {  # seeds FUZZER FOLDER: what the tests' data holds of its kind
  case $1 in
    json) cp "$golden"/*.json "$2" ;;
    scene) cp "$golden"/*.scene.json scenes/small.json "$2" ;;
    shot) cp "$golden"/*.shot.json "$2" ;;
    json5) cp "$golden"/a*.scene.json "$2" ;;
  esac
}

status=0
for fuzzer in "${fuzzers[@]}"; do
  corpus=$build/corpus/$fuzzer
  mkdir -p "$corpus" "$build/seeds/$fuzzer" "$build/found" "$build/work"
  seeds "$fuzzer" "$build/seeds/$fuzzer"
  kept=()
  [ ! -d "fuzz/corpus/$fuzzer" ] || kept=("$PWD/fuzz/corpus/$fuzzer")
  dictionary=()
  for name in "$fuzzer" model; do
    case $fuzzer-$name in *-model) [[ $fuzzer == s* ]] || continue ;; esac
    [ ! -e "fuzz/dictionaries/$name.dict" ] || dictionary=(-dict="$PWD/fuzz/dictionaries/$name.dict")
  done
  echo "=== $fuzzer, $seconds s"
  # A fuzzer writes the library's reports into its folder.
  (cd "$build/work" && "$build/fuzz/fuzz_$fuzzer" -max_total_time="$seconds" -timeout=10 \
    -rss_limit_mb=2048 -max_len=65536 -print_final_stats=1 "${dictionary[@]}" \
    -artifact_prefix="$build/found/$fuzzer-" "$corpus" "$build/seeds/$fuzzer" "${kept[@]}" \
    >"$build/$fuzzer.log" 2>&1) || status=1
  grep -E 'stat::number_of_executed_units|SUMMARY|ERROR|Test unit written' "$build/$fuzzer.log" || true
  grep -E ' cov: ' "$build/$fuzzer.log" | tail -n 1 || true
done
[ "$status" -eq 0 ] && echo "No findings." || echo "There are findings; the logs: $build/*.log"
exit "$status"
