#!/usr/bin/env bash
# Builds the fuzzers and runs each from its kept corpus and from the tests' data.
# Usage: scripts/fuzz.sh [SECONDS [FUZZER...]]      (20 seconds each by default)
# Two run at a time. New inputs are kept in build/fuzz/corpus; a failing one is named and kept in
# build/fuzz/found. The last lines report of each what was executed and covered; the exit status is 1
# if anything was found.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-20}
shift || true
fuzzers=("$@")
[ ${#fuzzers[@]} -gt 0 ] || fuzzers=(json scene shot json5 arguments relations graph loops models beside journal view)

scripts/install_packages.sh clang libclang-rt-14-dev llvm-14
cmake --preset fuzz
cmake --build --preset fuzz --target "${fuzzers[@]/#/fuzz_}"

root=$PWD
build=$root/build/fuzz
data=$root/tests/data
export LSAN_OPTIONS=suppressions=$root/tests/support/lsan.supp:print_suppressions=0
# Freed memory is kept for a while to detect its use; less of it leaves more of the limit to the input.
export ASAN_OPTIONS=quarantine_size_mb=64

# seeds FUZZER FOLDER: what the tests' data holds of its kind; large files would slow all down.
seeds() {
  local pattern
  case $1 in
    models) model_seeds "$2"; return 0 ;;
    json) pattern='*.json' ;;
    scene | json5 | view) pattern='*.scene.json' ;;
    shot) pattern='*.shot.json' ;;
    *) return 0 ;;
  esac
  find "$data/golden" -name "$pattern" -size -6k -exec cp {} "$2" \;
}

# The letter of the format and that of the options stand in front of the file.
model_seeds() {
  local file letter
  for file in "$data"/models/*; do
    case $file in
      *.obj) letter=o ;;
      *.stl) letter=s ;;
      *.ply) letter=p ;;
      *.gltf) letter=g ;;
      *.glb) letter=b ;;
      *.json) letter=c ;;
      *.jsonl) letter=l ;;
      *) continue ;;
    esac
    { printf '%s0' "$letter"; cat "$file"; } >"$1/$(basename "$file")"
  done
}

dictionary() {  # the words of a fuzzer's language, as an option
  local name=$1
  case $name in scene | shot | view) name=model ;; esac
  [ ! -e "fuzz/dictionaries/$name.dict" ] || echo "-dict=$root/fuzz/dictionaries/$name.dict"
}

run() {
  local fuzzer=$1
  local corpus=$build/corpus/$fuzzer seeds=$build/seeds/$fuzzer work=$build/work/$fuzzer
  mkdir -p "$corpus" "$seeds" "$work" "$build/found"
  seeds "$fuzzer" "$seeds"
  local options=(-max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -max_len=65536
    -print_final_stats=1 -artifact_prefix="$build/found/$fuzzer-")
  mapfile -t -O "${#options[@]}" options < <(dictionary "$fuzzer")
  local folders=("$corpus" "$seeds")
  [ ! -d "fuzz/corpus/$fuzzer" ] || folders+=("$root/fuzz/corpus/$fuzzer")
  # A fuzzer writes the library's reports into its folder.
  cd "$work"
  "$build/fuzz/fuzz_$fuzzer" "${options[@]}" "${folders[@]}" >"$build/$fuzzer.log" 2>&1 ||
    touch "$build/$fuzzer.failed"
}

report() {
  local log=$build/$1.log
  local executed rate cover
  executed=$(awk '/stat::number_of_executed_units/ { print $2 }' "$log")
  rate=$(awk '/stat::average_exec_per_sec/ { print $2 }' "$log")
  cover=$(grep -Eo 'cov: [0-9]+ ft: [0-9]+' "$log" | tail -n 1)
  printf '%-10s %10s executions %7s/s  %s\n' "$1" "${executed:-0}" "${rate:-0}" "${cover:-nothing covered}"
  [ ! -e "$build/$1.failed" ] || grep -E 'SUMMARY|Test unit written' "$log" || echo "failed: $log"
}

rm -f "$build"/*.failed
for fuzzer in "${fuzzers[@]}"; do
  while [ "$(jobs -rp | wc -l)" -ge 2 ]; do wait -n; done
  run "$fuzzer" &
done
wait

echo
for fuzzer in "${fuzzers[@]}"; do report "$fuzzer"; done
if compgen -G "$build/*.failed" >/dev/null; then
  echo "There are findings; the logs: $build/FUZZER.log"
  exit 1
fi
echo "No findings."
