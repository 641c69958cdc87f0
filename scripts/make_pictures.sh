#!/usr/bin/env bash
# Makes the pictures of docs/concepts.md in docs/pictures, from the scenes that explain one thing each.
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
