#!/usr/bin/env bash
# Runs one stage of a longer check under a title and reports how long it took.
# Usage: scripts/stage.sh TITLE COMMAND [ARGUMENT...]
set -euo pipefail
echo "=== $1"
"${@:2}"
echo "=== $1: passed after $SECONDS s"
