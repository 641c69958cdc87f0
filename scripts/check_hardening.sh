#!/usr/bin/env bash
# Reports whether built libraries and programs are hardened: addresses bound when they are loaded and
# read-only from then on, no executable stack, programs at random addresses, checked stacks, checked
# buffers, and nothing of the private kernel visible.
#
# Usage: scripts/check_hardening.sh FILE...      (ELF files of a release build)
set -euo pipefail

[ $# -gt 0 ] || { echo "hardening: name the files to look at" >&2; exit 2; }
status=0

fault() {
  echo "hardening: $1: $2"
  status=1
}

# What a file takes from others, and what it gives to others, without versions.
taken() { readelf --dyn-syms --wide "$1" | awk '$7 == "UND" { sub("@.*", "", $8); print $8 }'; }
given() { readelf --dyn-syms --wide "$1" | awk '$7 ~ /^[0-9]+$/ { sub("@.*", "", $8); print $8 }'; }

check() {
  local file=$1 header dynamic segments symbols unchecked visible
  header=$(readelf --file-header --wide "$file")
  dynamic=$(readelf --dynamic --wide "$file")
  segments=$(readelf --program-headers --wide "$file")
  symbols=$(taken "$file")

  grep -q 'Type: *DYN' <<<"$header" || fault "$file" "has a fixed address (-pie)"
  if grep -q INTERP <<<"$segments" && ! grep -q 'FLAGS_1.*PIE' <<<"$dynamic"; then
    fault "$file" "is no position-independent program (-pie)"
  fi
  grep -q GNU_RELRO <<<"$segments" || fault "$file" "keeps its tables writable (-z relro)"
  grep -q 'FLAGS_1.*NOW' <<<"$dynamic" || fault "$file" "binds as it runs (-z now)"
  grep -Eq 'GNU_STACK.* RW ' <<<"$segments" || fault "$file" "has an executable stack"
  grep -qx __stack_chk_fail <<<"$symbols" ||
    fault "$file" "has unchecked stacks (-fstack-protector-strong)"
  # Not vsnprintf: std::to_string takes its address.
  unchecked=$(grep -Ex '(v?(f|s|d|as)?printf|snprintf|v?f?wprintf)' <<<"$symbols" || true)
  # The C library has checked forms of these in C++ for g++ alone.
  ! readelf --string-dump=.comment "$file" | grep -q clang || unchecked=
  [ -z "$unchecked" ] ||
    fault "$file" "calls $(echo $unchecked) unchecked (_FORTIFY_SOURCE, optimisation)"
  visible=$(given "$file" | grep -E '^_ZNK?8Lumivane6Kernel' || true)
  [ -z "$visible" ] || fault "$file" "shows the kernel: $(echo $visible)"
}

# One checked call in all of them together: a single file may need none.
some_checked_buffer() {
  local symbols
  symbols=$(for file in "$@"; do taken "$file"; done)
  grep -Eqx '__(v?(f|s|sn)?printf|mem[a-z]+|str[a-z]+|read|poll)_chk' <<<"$symbols" ||
    fault "$*" "no checked buffer anywhere (_FORTIFY_SOURCE)"
}

for file in "$@"; do check "$file"; done
some_checked_buffer "$@"
[ $status -ne 0 ] || echo "hardening: $# files are hardened"
exit $status
