#!/usr/bin/env bash
# Counts the machine instructions of the pipeline on the town of 200 boxes seen from the air, and fails
# if a step takes over 10 % more than the figure committed in bench/instructions.txt.
#
# Usage: bench/instructions.sh [BUILD] [--update]     (build/release; --update writes the figures)
#
# Counted by callgrind in a release build: all that runs within the library's calls to read the
# scene's text, to make the shot and to write its text, with what they call (VTK, allocator, libm),
# and not the start of the process. Instructions, other than seconds, do not depend on what else the
# machine does; the environment is emptied and addresses are not randomised, so that the count of one
# build repeats to within a few instructions.
set -euo pipefail
folder=$(cd "$(dirname "$0")" && pwd)
build=$folder/../build/release
update=no
for argument in "$@"; do
  case $argument in
    --update) update=yes ;;
    *) build=$argument ;;
  esac
done
figures=$folder/instructions.txt
program=$(realpath "$build/bench/bench_once")

command -v valgrind >/dev/null || { echo "instructions.sh: valgrind is missing" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
env -i PATH="$PATH" LC_ALL=C setarch --addr-no-randomize \
  valgrind --tool=callgrind --callgrind-out-file=callgrind.out --dump-instr=no \
  "$program" city 200 air >output.txt 2>errors.txt ||
  { cat output.txt errors.txt >&2; exit 1; }
callgrind_annotate --inclusive=yes --threshold=100 callgrind.out >inclusive.txt

# The inclusive count of a function: the first number of its line.
count() {
  awk -v name=":$1 " 'index($0 " ", name) { gsub(",", "", $1); print $1; exit }' inclusive.txt
}

status=0
: >new.txt
for step in read shot write; do
  now=$(count "bench${step^}")
  [ -n "$now" ] || { echo "instructions.sh: no count for $step" >&2; exit 1; }
  echo "$step $now" >>new.txt
  [ "$update" = no ] || continue
  before=$(awk -v step="$step" '$1 == step { print $2 }' "$figures")
  [ -n "$before" ] || { echo "instructions.sh: $figures has no figure for $step" >&2; exit 1; }
  change=$(awk -v a="$before" -v b="$now" 'BEGIN { printf "%+.1f", 100 * (b - a) / a }')
  echo "$step: $now instructions, committed $before ($change %)"
  if [ "$now" -gt $((before + before / 10)) ]; then
    echo "instructions.sh: $step grew by more than 10 %" >&2
    status=1
  elif [ "$now" -lt $((before - before / 10)) ]; then
    echo "$step shrank: commit the new figure (bench/instructions.sh --update)"
  fi
done
[ "$update" = no ] || { cp new.txt "$figures"; cat "$figures"; }
exit $status
