#!/usr/bin/env bash
# Draws a town of many boxes along parallel lines of sight, and looks at the SVG: whether it is well
# formed (xmllint), opens in Chromium if that is there, and takes at most 60 bytes a vertex.
# Usage: bench/large_drawing.sh [BOXES] [BUILD-FOLDER]    (22000 build/release)
set -euo pipefail
cd "$(dirname "$0")/.."
boxes=${1:-22000}
build=${2:-build/release}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$build/bench/bench_scene" city "$boxes" -o "$work/city.json" >/dev/null
"$build/host/lumivane" draw "$work/city.json" --parallel 1,1.2,-1.5 --fill brush --svg "$work/city.svg" \
  --stats "$work/stats.json" >/dev/null
xmllint --noout "$work/city.svg"
/usr/bin/python3 - "$work" <<'PYTHON'
import json
import re
import sys
from pathlib import Path

folder = Path(sys.argv[1])
text = (folder / "city.svg").read_text(encoding="utf-8")
cells = json.loads((folder / "stats.json").read_text())["cells"]
vertices = sum(len(re.findall(r"-?(?:\d+\.?\d*|\.\d+)", d)) // 2 for d in re.findall(r' d="([^"]*)"', text))
print(f"{cells} cells, {vertices} vertices, {len(text)} bytes: {len(text) / vertices:.1f} a vertex")
sys.exit(0 if len(text) <= 60 * vertices else 1)
PYTHON
if command -v chromium >/dev/null; then
  chromium --headless --no-sandbox --disable-gpu --no-first-run --user-data-dir="$work/profile" \
    --screenshot="$work/city.png" --window-size=900,900 "file://$work/city.svg" 2>/dev/null
  echo "Chromium's picture of it has $(stat -c %s "$work/city.png") bytes"
fi
