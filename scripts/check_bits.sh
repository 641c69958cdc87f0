#!/usr/bin/env bash
# The same bytes from g++ and clang++, debug and release. Builds what is compared in each of the
# four, and no more: shots that must come out byte for byte, the single results of the tests, and of
# every sample scene and two city models the shot and the exact map, taken by one thread and by eight
# (those of the first build are what the others are compared with).
# Usage: scripts/check_bits.sh [PRESET...]
# Not part of scripts/test.sh, since it builds three more times.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install_packages.sh clang
presets=("$@")
[ ${#presets[@]} -gt 0 ] || presets=(release clang-release debug clang-debug)
results=$(mktemp -d)
trap 'rm -rf "$results"' EXIT

# look PROGRAM FOLDER NAME SCENE OPTION...: a scene's shot and its maps as files of a folder.
look() {
  local program=$1 folder=$2 name=$3 scene=$4
  shift 4
  run() { (cd "$folder" && "$program" "$@" >last.out 2>&1 || { cat last.out; exit 1; }); }
  run shot "$scene" "$@" -o "$name.shot"
  for field in hemisphere sphere; do
    local map=$name.$field
    run view "$scene" "$@" --field "$field" --threads 1 --map "$map.map" \
      --shares "$map.csv" --rows region
    run view "$scene" "$@" --field "$field" --threads 8 --map "$map.8.map"
    cmp "$folder/$map.map" "$folder/$map.8.map"
  done
  rm "$folder/last.out"
}

look_at_all() {
  local program=$1 folder=$2 name scene camera eye forward
  while read -r name scene camera eye forward; do
    case $name in '' | '#'*) continue ;; esac
    [ "$camera" = spherical ] || continue
    look "$program" "$folder" "$name" "$PWD/scenes/$scene" "--eye=$eye" "--forward=$forward"
  done <scenes/views.txt
  for name in ring docking winding; do
    look "$program" "$folder" "$name" "$PWD/scenes/$name.json" --eye=-4.1,0.37,0.9
  done
  look "$program" "$folder" house "$PWD/tests/data/models/house.city.json" --center \
    --eye=-9.3,-11.1,1.7 --forward=1,1,0.2
  look "$program" "$folder" rotterdam "$PWD/scenes/models/rotterdam.city.json" --center \
    --eye=3.1,-2.3,1.7 --forward=0,0,1
}

for preset in "${presets[@]}"; do
  echo "== $preset"
  start=$SECONDS
  cmake --preset "$preset" >/dev/null
  cmake --build "build/$preset" --target lumivane_host test_golden test_vectors \
    >"$results/build.log" || { tail -n 40 "$results/build.log"; exit 1; }
  echo "built in $((SECONDS - start)) s"
  (cd "build/$preset" && ctest -R "^golden" --no-tests=error --output-on-failure | tail -n 5)
  (cd "build/$preset/tests" && ./test_vectors --gtest_brief=1 --gtest_filter='vectors_*' | tail -n 3)
  mkdir "$results/$preset"
  look_at_all "$PWD/build/$preset/host/lumivane" "$results/$preset"
  diff -rq "$results/${presets[0]}" "$results/$preset"
  echo "$(find "$results/$preset" -type f | wc -l) files as ${presets[0]} makes them"
done
