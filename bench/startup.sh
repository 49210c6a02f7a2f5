#!/usr/bin/env bash
# From process start to the shown window, next to an empty Qt window: medians, under an X server of its own.
# Needs Xvfb, xev and xprop. Usage: bench/startup.sh [BUILD-FOLDER] (built with -DPAKRUNE_BENCH=ON).
set -euo pipefail
build=$(realpath "${1:-build}")
rounds=7
work=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null; rm -rf "$work"' EXIT
export HOME=$work XDG_CONFIG_HOME=$work/config LC_ALL=C.UTF-8 QT_QPA_PLATFORM=xcb
unset WAYLAND_DISPLAY

mkfifo "$work/display"
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
read -r number <"$work/display"
export DISPLAY=:$number

milliseconds() { # PROGRAM: until the server maps its first window
  local begin child watcher line
  exec 4< <(exec stdbuf -oL xev -root -event substructure -event property 2>/dev/null)
  watcher=$!
  until read -r -t 0.2 -u 4 line && [[ $line == PropertyNotify* ]]; do # xev listens
    xprop -root -f PROBE 8s -set PROBE x
  done
  begin=${EPOCHREALTIME/./}
  "$@" >/dev/null 2>&1 &
  child=$!
  while read -r -t 30 -u 4 line; do
    [[ $line == MapNotify* ]] && break
  done
  [[ $line == MapNotify* ]] || { echo "$1 showed no window" >&2; exit 1; }
  echo $(((${EPOCHREALTIME/./} - begin) / 1000))
  kill -KILL "$child" "$watcher" # the next round needs nothing of this one
  wait "$child" 2>/dev/null || true
  exec 4<&-
}
median() { sort -n | sed -n "$((rounds / 2 + 1))p"; }

for _ in $(seq "$rounds"); do
  milliseconds "$build/bench/empty_window" >>"$work/empty"
  milliseconds "$build/pakrune" >>"$work/ours"
done
echo "process start to shown window: $(median <"$work/ours") ms, an empty Qt window: $(median <"$work/empty") ms"
