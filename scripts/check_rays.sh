#!/usr/bin/env bash
# Casts rays at the exact maps of all sample scenes, city models and hard scenes, at 51 eyes over the
# city model of Delft, and at 200 eyes in its streets and 24 in front of its walls. Fails if one label
# is wrong farther than 1e-6 rad from an edge, if a share is off by more than chance allows, or if a map
# does not keep what all maps keep. What is printed is explained in docs/visibility-map.md.
# Usage: scripts/check_rays.sh [RAYS]      (100000 for each eye by default)
# Takes about an hour of one processor, most of it in Delft.
set -euo pipefail
cd "$(dirname "$0")/.."
rays=${1:-100000}
[ -f build/release/CMakeCache.txt ] || cmake --preset release
cmake --build --preset release --target truth_campaign
campaign=build/release/tests/truth/truth_campaign
"$campaign" all --rays "$rays"
"$campaign" scenes/models/delft.city.json --rays "$rays" --street 200 --facade 24
