#!/usr/bin/env bash
# Makes the pictures in docs/pictures: of the scenes that explain one thing each, of the room and the
# street, and of a real town. The two windows, window-*.png, are pictures of a screen and stay.
# Usage: scripts/make_pictures.sh [PROGRAM]    (build/release/host/lumivane by default)
set -euo pipefail
cd "$(dirname "$0")/.."
program=$PWD/${1:-build/release/host/lumivane}
pictures=$PWD/docs/pictures
display=()
[ -n "${DISPLAY:-}" ] || display=(xvfb-run -a)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

picture() {  # picture SCENE EYE [OPTION...]
  (cd "$work" && "${display[@]}" "$program" shot "$OLDPWD/scenes/$1.json" --eye "$2" "${@:3}" \
    --size 560x560 --png "$pictures/$1.png" >/dev/null)
  echo "docs/pictures/$1.png"
}

picture winding -4.1,0.013,1.1
picture docking -4.1,0.013,0.017
picture ring -4,0.013,0.017

while read -r name scene camera eye forward; do
  case $name in room-* | street-*) ;; *) continue ;; esac
  (cd "$work" && "$program" shot "$OLDPWD/scenes/$scene" --camera "$camera" --eye "$eye" \
    --forward "$forward" --axes --size 480x480 --png-vector "$pictures/$name.png" \
    </dev/null >/dev/null)
  echo "docs/pictures/$name.png"
done <scenes/views.txt

# The room's shot beside its map.
(cd "$work" && "$program" shot "$OLDPWD/scenes/room.json" --eye 0.35,2.137,1.6 --size 480x480 \
  --png-vector "$pictures/room-shot.png" >/dev/null)
(cd "$work" && "$program" view "$OLDPWD/scenes/room.json" --eye 0.35,2.137,1.6 --size 480x480 \
  --png-vector "$pictures/room-map.png" >/dev/null)
echo "docs/pictures/room-shot.png docs/pictures/room-map.png"

# Where no order of whole faces is right, and where the centre line is at the left edge: shots beside
# maps. The town is in a file that is not a scene.
python3 scripts/make_torus.py >"$work/torus.obj"
beside() {  # beside NAME SCENE CAMERA OPTION...
  (cd "$work" && "$program" shot "$2" --camera "$3" "${@:4}" --size 480x480 \
    --png-vector "$pictures/$1-shot.png" >/dev/null 2>&1
    "$program" view "$2" --projection "$3" "${@:4}" --size 480x480 \
      --png-vector "$pictures/$1-map.png" >/dev/null)
  echo "docs/pictures/$1-shot.png docs/pictures/$1-map.png"
}
beside roof "$PWD/scenes/models/delft.city.json" fisheye --eye=112.89,-34.97,7.06 \
  --forward=0.87,-0.49,-1
beside torus "$work/torus.obj" equirectangular --eye=-8,0,0

# The pieces of an edge are short by --max-length already; one at least is enough for the many short
# edges of a town.
town() {  # town NAME MODEL CAMERA EYE FORWARD
  (cd "$work" && "$program" shot "$OLDPWD/scenes/models/$2.city.json" --camera "$3" --eye "$4" \
    --forward "$5" --segments 1 --size 1000x1000 --png-vector "$pictures/$1.png" >/dev/null)
  echo "docs/pictures/$1.png"
}

town delft-air delft spherical 40.3,-75.7,26 0.33,0.6,-0.8
town delft-street delft normal 28.3,-65.7,6.7 0.6,0.7,-0.05

# The sky of a court and the sun's paths, where the program knows where the sun is.
(cd "$work" && "$program" sun "$OLDPWD/scenes/models/rotterdam.city.json" --eye 231.8,-183.6,1.6 \
  --latitude 51.917 --longitude 4.486 --time-zone Europe/Amsterdam --north 0,1,0 --day 2024-03-20 \
  --size 640x640 --svg "$pictures/sun-path.svg" >/dev/null)
echo "docs/pictures/sun-path.svg"

# Those of the Python examples, where the package is built.
export PYTHONPATH=$PWD/build/release/python
if /usr/bin/python3 -c 'import lumivane, matplotlib, geopandas' 2>/dev/null; then
  /usr/bin/python3 examples/python/sky_view_factor_map.py scenes/models/delft.city.json --spacing 9 \
    --area=0,-130,190,20 -o "$pictures/python-sky-view-factors.png"
  /usr/bin/python3 examples/python/fisheye_sun_path.py scenes/street.json --eye=-5.3,-1.37,1.6 \
    -o "$pictures/python-sun-path.png"
  /usr/bin/python3 examples/python/nearest_objects.py scenes/room.json --eye 0.35,2.137,1.6 \
    -o "$pictures/python-nearest-objects.png"
fi
