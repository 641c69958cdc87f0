#!/usr/bin/env bash
# Builds the Python package as pip does by pyproject.toml, without pip and its build backend: the same
# arguments of CMake, the same targets, the same component installed into an empty folder, from which
# the package is then used. For machines that do not reach PyPI. Usage: check_wheel.sh
set -euo pipefail
cd "$(dirname "$0")/.."
python=/usr/bin/python3
folder=build/wheel

# What pyproject.toml says, as lines of the shell.
eval "$("$python" - <<'PYTHON'
import re, shlex, tomllib
from pathlib import Path

project = tomllib.loads(Path("pyproject.toml").read_text())
build = project["tool"]["scikit-build"]
version = build["metadata"]["version"]
number = re.search(version["regex"], Path(version["input"]).read_text())["value"]
defines = [f"-D{name}={value}" for name, value in build["cmake"]["define"].items()]
print("version=" + number)
print("type=" + build["cmake"]["build-type"])
print("defines=(" + shlex.join(defines) + ")")
print("targets=(" + shlex.join(build["build"]["targets"]) + ")")
print("components=(" + shlex.join(build["install"]["components"]) + ")")
PYTHON
)"

numpy=$("$python" -c 'import numpy; print(numpy.get_include())')
cmake -S . -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE="$type" -DSKBUILD=2 -DSKBUILD_STATE=wheel \
  -DSKBUILD_PROJECT_NAME=lumivane -DSKBUILD_PROJECT_VERSION="$version" \
  -DPython_EXECUTABLE="$python" -DPython3_EXECUTABLE="$python" -DPYTHON_EXECUTABLE="$python" \
  -DPython_NumPy_INCLUDE_DIR="$numpy" -DPython_FIND_REGISTRY=NEVER "${defines[@]}"
for target in "${targets[@]}"; do
  cmake --build "$folder" --target "$target"
done
rm -rf "$folder/staging"
for component in "${components[@]}"; do
  cmake --install "$folder" --prefix "$folder/staging" --component "$component" > /dev/null
done

staging=$PWD/$folder/staging
find "$staging" -type f | sed "s|$staging/||" | sort
[ -z "$(find "$staging" -mindepth 1 -maxdepth 1 ! -name lumivane)" ] ||
  { echo "something is installed beside the package" >&2; exit 1; }
# From another folder, so that nothing but the staging folder can be meant.
scene=$PWD/scenes/small.json
cd /
env -u LD_LIBRARY_PATH PYTHONPATH="$staging" "$python" - "$scene" "$version" "$staging" <<'PYTHON'
import sys
from pathlib import Path

import lumivane

scene, version, staging = sys.argv[1:]
assert lumivane.__version__ == version, lumivane.__version__
assert Path(lumivane.__file__).is_relative_to(staging), lumivane.__file__
view = lumivane.Scene.read(scene).look((-2.6, 0.35, 1.9), (0, 0, 1))
assert 0 < view.sky_view_factor <= 1
lumivane.Scene.read(scene).shot((-2.6, 0.35, 1.9))
used = {line.split()[-1] for line in Path("/proc/self/maps").read_text().splitlines()
        if "liblumivane" in line}  # fmt: skip
assert len(used) >= 5 and all(Path(file).is_relative_to(staging) for file in used), used
print(f"lumivane {version} works from {staging}, with {len(used)} libraries of its own")
PYTHON
