#!/usr/bin/env bash
# Installs what building, testing and the demo need and what is missing: Debian 12 packages, as
# root or through sudo. Does nothing, and needs no rights, when all of them are there.
# Usage: install_packages.sh [FURTHER-PACKAGE...]
set -euo pipefail

packages=(
  g++ cmake ninja-build python3          # to build
  libvtk9-dev libcli11-dev libx11-dev    # the library, the programs
  nlohmann-json3-dev libpugixml-dev libcairo2-dev libglu1-mesa-dev pkg-config  # what comes in and goes out
  libarchive-dev                         # view factors as archives of arrays
  libxxhash-dev                          # the hashes of files of scenes
  libnova-dev tzdata                     # where the sun stands, and what clocks show
  libmimalloc-dev                        # the program's memory; without it that of the C library
  libgdal-dev gdal-bin                   # maps of geographic information systems, and to look at them
  libgtest-dev libgmock-dev valgrind     # the tests
  xvfb xauth libgl1-mesa-dri             # to draw without a screen
  xdotool x11-utils                      # to look at windows
  python3-jsonschema                     # the schemas of the documents
  help2man dpkg-dev binutils file        # manual pages, packages
  chromium libxml2-utils                 # to look at SVG and pages
  parallel                               # to spread eye points over shards
  libembree-dev                          # rays beside which the exact map is measured
  python3-dev python3-numpy pybind11-dev # the Python package
  python3-pytest python3-mypy mypy       # its tests
  python3-scipy python3-matplotlib python3-xarray python3-geopandas  # what it works with
  python3-dask python3-distributed       # many eyes on clusters; without these their tests are skipped
  python3-mpi4py openmpi-bin
  slurmctld slurmd slurm-client munge
)

# Node.js from elsewhere may bring its npm along, beside which Debian's cannot be installed.
command -v node >/dev/null || packages+=(nodejs)  # to use pages in a browser
command -v npm >/dev/null || packages+=(npm)

packages+=("$@")

missing=()
for package in "${packages[@]}"; do
  status=$(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$status" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "Please install as root: ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi

apt_get() {
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -y -q --no-install-recommends "$@"
}

echo "Installing: ${missing[*]}"
# The package lists may be missing or old: then they are fetched, and it is tried again.
if ! apt_get install "${missing[@]}"; then
  apt_get update
  apt_get install "${missing[@]}"
fi
