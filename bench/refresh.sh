#!/usr/bin/env bash
# Measures everything anew and writes it into bench/README.md: whole runs, the gain over the plain
# pipeline, single steps, instruction counts. Takes about a quarter of an hour on an idle machine.
#
# Usage: bench/refresh.sh [LABEL]     (after; the figures go to bench/results/LABEL.json)
set -euo pipefail
cd "$(dirname "$0")/.."
label=${1:-after}

cmake --preset release -DLUMIVANE_BUILD_BENCH=ON
cmake --build --preset release --target lumivane_host bench_scene bench_once bench_gain bench_kernels
bench/run.py "$label"
(cd "$(mktemp -d)" && "$OLDPWD/build/release/bench/bench_gain" 200 7) | sed -n '/^The town/,$p' \
  >bench/results/gain.txt
build/release/bench/bench_kernels --benchmark_min_time=0.3 --benchmark_out_format=json \
  --benchmark_out=bench/results/kernels.json
bench/instructions.sh --update
/usr/bin/python3 bench/report.py  # Debian's, which python3-matplotlib is for
