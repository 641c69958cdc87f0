#!/usr/bin/env bash
# Builds a program without each hardening in turn: the check must name what is missing.
# Usage: hardening_test.sh CHECK COMPILER
set -euo pipefail
check=$1
compiler=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cat >"$work/program.cpp" <<'CODE'
#include <cstdio>
#include <cstring>
int main(int count, char** arguments) {
  char text[16];
  std::strncpy(text, arguments[0], sizeof text - 1);
  text[15] = '\0';
  return std::printf("%s %d\n", text, count) < 0;
}
CODE

hardened=(-O2 -fPIE -pie -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2
          -Wl,-z,relro,-z,now)

# The later flag counts.
build() { "$compiler" -w "${hardened[@]}" "$@" "$work/program.cpp" -o "$work/program"; }

expect_fault() {  # expect_fault WORDS FLAG...
  build "${@:2}"
  if "$check" "$work/program" >"$work/reported"; then
    echo "nothing is reported of a program built with ${*:2}"
    exit 1
  fi
  grep -q -- "$1" "$work/reported" || { echo "not reported of ${*:2}:"; cat "$work/reported"; exit 1; }
}

build
"$check" "$work/program"
expect_fault "fixed address" -fno-pie -no-pie
expect_fault "-z relro" -Wl,-z,norelro
expect_fault "-z now" -Wl,-z,lazy
expect_fault "executable stack" -z execstack
expect_fault "unchecked stacks" -fno-stack-protector
expect_fault "calls printf unchecked" -U_FORTIFY_SOURCE
