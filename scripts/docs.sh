#!/usr/bin/env bash
# Builds the API reference in build/doxygen; a warning is an error.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install_packages.sh doxygen
mkdir -p build
doxygen docs/Doxyfile
echo "reference: build/doxygen/html/index.html"
