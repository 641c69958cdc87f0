#!/usr/bin/env bash
# Builds Lumivane and makes the shots of the sample scenes, as files and as pictures, in
# ./demo-output. Installs missing packages first.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install_packages.sh
cmake --preset release
cmake --build --preset release --target lumivane_host

output=$PWD/demo-output
mkdir -p "$output"
display=()
[ -n "${DISPLAY:-}" ] || display=(xvfb-run -a)

# Each line of the list: name, scene, camera, eye, forward.
while read -r name scene camera eye forward; do
  case $name in '' | '#'*) continue ;; esac
  echo "== $name: $scene seen by a $camera camera"
  "${display[@]}" build/release/host/lumivane shot "scenes/$scene" \
    --camera "$camera" --eye "$eye" --forward "$forward" \
    -o "$output/$name.shot.json" --png "$output/$name.png" --stats "$output/$name.stats.json" \
    </dev/null >"$output/$name.log"
done <scenes/views.txt

echo
echo "Shots, pictures and statistics:"
for file in "$output"/*.shot.json "$output"/*.png "$output"/*.stats.json; do echo "  $file"; done
