#!/usr/bin/env bash
# Tells where the time of a large scene goes, function by function, by callgrind: the share of each
# in all instructions of the library's calls, without and with what it calls.
#
# Usage: bench/profile.sh [BUILD [SCENE...]]     (build/release; city 5000 air)
#
# The last table answers who allocates: the tests of pairs do not.
set -euo pipefail
build=${1:-$(dirname "$0")/../build/release}
shift || true
[ $# -gt 0 ] || set -- city 5000 air
program=$(realpath "$build/bench/bench_once")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
valgrind --tool=callgrind --callgrind-out-file=callgrind.out --collect-atstart=no \
  --toggle-collect=benchRead --toggle-collect=benchShot --toggle-collect=benchWrite \
  "$program" "$@" >output.txt 2>errors.txt || { cat output.txt errors.txt >&2; exit 1; }
short() {
  sed -E 's/ \[[^]]*\]$//; s#[^ ]*/([^/ ]+:)#\1#; s/ \?\?\?:/ /
          s/std::(__cxx11::)?basic_string<char[^>]*> ?(, std::allocator<char> >)?/std::string/g' |
    cut -c1-140
}
echo "$*: by function, without what it calls"
callgrind_annotate --threshold=95 callgrind.out | awk '/%\)/ && ++n <= 30' | short
echo
echo "$*: by function, with what it calls"
callgrind_annotate --inclusive=yes --threshold=100 callgrind.out | awk '/%\)/ && ++n <= 40' | short
echo
echo "$*: who calls the allocator, by instructions spent there"
callgrind_annotate --inclusive=yes --tree=caller --threshold=100 callgrind.out |
  awk '/^ *$/ { block = "" }
       / < / { block = block $0 "\n" }
       / \* .*operator new\(unsigned long\)/ { printf "%s", block }' |
  sort -t'(' -k1,1 -rn | awk '{ gsub(",", "", $1); print }' | sort -rn | awk '++n <= 25' | short
