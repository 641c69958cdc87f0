#!/usr/bin/env bash
# Makes the pictures of docs/gallery.md, docs/pictures/gallery-*.png, from the sample scenes.
# The SVG of each is looked through by xmllint, if it is there.
# Usage: scripts/make_gallery.sh [PROGRAM] [FOLDER]    (build/release/host/lumivane docs/pictures)
set -euo pipefail
cd "$(dirname "$0")/.."
program=${1:-build/release/host/lumivane}
folder=${2:-docs/pictures}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$folder"
python3 scripts/make_torus.py >"$work/torus.obj"

drawing() {  # drawing NAME SCENE OPTION...
  "$program" draw "$2" "${@:3}" --dpi 110 --png "$folder/gallery-$1.png" --svg "$work/$1.svg" \
    >/dev/null
  if command -v xmllint >/dev/null; then xmllint --noout "$work/$1.svg"; fi
  echo "$folder/gallery-$1.png"
}

drawing fisheye scenes/street.json --projection equidistant --eye -5.3,-1.37,1.7 --forward 0,0,1 \
  --up 0,1,0 --fill brush --sky '#cfe3f5' --rings 15 --north --width 130
drawing panorama scenes/street.json --projection equirectangular --field sphere \
  --eye -5.3,-1.37,1.7 --forward 1,0,0 --fill brush --sky '#cfe3f5' --widths outline=0.3,silhouette=0.2,crease=0.15
drawing street scenes/street.json --eye -5.3,-1.37,3.4 --target 40,0,8 --upright --fov 75 \
  --fill brush --sky '#e8f1fa'
drawing elevation scenes/street.json --parallel front --fill shading --light -0.5,-1,1 --scale 1:400 --page 297x120 \
  --scale-bar --widths outline=0.35,silhouette=0.2,crease=0.15
drawing plan scenes/street.json --parallel top --fill brush --scale 1:300 --page 297x140 \
  --scale-bar --north --labels id --text-height 2
drawing axonometry scenes/small.json --parallel isometric --hidden dashed --width 110
drawing town scenes/models/delft.city.json --parallel 1,1.2,-0.9 --fill class --legend \
  --widths outline=0.35,silhouette=0.18,crease=0.12
drawing mesh "$work/torus.obj" --parallel 1,2,-1.4 --hidden dashed --width 120
