#!/bin/sh
# Runs a command that draws: on the display there is, or else on a virtual one of its own.
#
# The server picks its number itself (-displayfd), so that any number of these can start at a time;
# it must not start anew whenever the last window closes (-noreset), or the next one may miss it.
if [ -n "$DISPLAY" ]; then
  exec "$@"
fi
if ! command -v Xvfb >/dev/null; then
  echo "with_display.sh: no DISPLAY, and no Xvfb to make one (Debian package xvfb)" >&2
  exit 1
fi

folder=$(mktemp -d) || exit 1
server=
cleanUp() {
  [ -n "$server" ] && kill "$server" 2>/dev/null && wait "$server" 2>/dev/null
  rm -rf "$folder"
}
trap cleanUp EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

Xvfb -displayfd 3 -screen 0 1600x1200x24 -nolisten tcp -noreset 3>"$folder/number" 2>"$folder/log" &
server=$!
for _ in $(seq 200); do
  [ -s "$folder/number" ] && break
  kill -0 "$server" 2>/dev/null || break
  sleep 0.05
done
if [ ! -s "$folder/number" ]; then
  echo "with_display.sh: the virtual display did not start:" >&2
  cat "$folder/log" >&2
  exit 1
fi
DISPLAY=":$(cat "$folder/number")" "$@"
