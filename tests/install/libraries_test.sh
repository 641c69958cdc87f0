#!/usr/bin/env bash
# Fails if a program or library names a library of which it uses nothing: each costs every start the
# time to load it and all that it needs in turn.
#
# Usage: libraries_test.sh FILE...
set -euo pipefail
status=0
for file in "$@"; do
  # ldd -u also counts what the compiler names for every program, which a linker may leave.
  unused=$(ldd -u "$file" | grep '/' | grep -vE '/lib(m|gcc_s|c)\.so' || true)
  needed=$(readelf -d "$file" | grep -c NEEDED)
  [[ $needed -gt 0 ]] || { echo "$file: names no library at all" >&2; status=1; }
  [[ -z $unused ]] || { echo "$file uses nothing of: $unused" >&2; status=1; }
done
exit $status
