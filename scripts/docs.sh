#!/usr/bin/env bash
# Builds the API reference in build/doxygen; a warning is an error.
set -euo pipefail
cd "$(dirname "$0")/.."
command -v doxygen >/dev/null || { echo "Please install doxygen" >&2; exit 2; }
mkdir -p build
doxygen docs/Doxyfile
echo "reference: build/doxygen/html/index.html"
