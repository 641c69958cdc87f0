#!/usr/bin/env bash
# What bash would offer, asked of the completion itself. Usage: completion_test.sh FILE PROGRAM
set -uo pipefail
source "$1"
program=$2
cd "$(dirname "$0")" || exit 1
failures=0

expect() {  # expect WANTED WORD...: the words typed so far, the last one unfinished
  local wanted=$1
  shift
  COMP_WORDS=("$program" "$@")
  COMP_CWORD=$#
  _lumivane
  [[ " ${COMPREPLY[*]} " == *" $wanted "* ]] && return
  echo "after \"$*\" there is no $wanted but: ${COMPREPLY[*]}"
  failures=$((failures + 1))
}

expect_only() {
  expect "$@"
  [ ${#COMPREPLY[@]} -eq 1 ] && return
  echo "after \"${*:2}\" there is more than $1: ${COMPREPLY[*]}"
  failures=$((failures + 1))
}

expect_only shot sho""t
expect show s
expect_only --version --v
expect_only --segments shot --seg
expect_only --camera shot --cam
expect spherical shot --camera ""
expect_only outline shot --style o
expect_only check.cmake shot check
expect_only --output json5 --o
[ "$failures" -eq 0 ]
