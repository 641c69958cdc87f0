#!/usr/bin/env bash
# Makes the Debian packages of the release build in build/packages.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install_packages.sh
cmake --preset release
cmake --build --preset release
rm -rf build/packages
cpack --config build/release/CPackConfig.cmake -B build/packages
ls -1 build/packages/*.deb
