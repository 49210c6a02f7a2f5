#!/usr/bin/env bash
# A day's work in the window, driven from outside and pictured step by step: browse, permissions, pack, inspect, extract, send.
# Usage: tools/walk/walk.sh keyboard|assistive OUT-FOLDER [BUILD-FOLDER]
#   keyboard   keys only, through xdotool
#   assistive  the accessibility bus only, as a screen reader's or a switch's user acts
# SCREEN=640x480 for another screen, WAYLAND=1 for a window of weston (packages weston, qt6-wayland); QT_SCALE_FACTOR,
# LC_ALL and the rest of the environment reach the program.
# Needs, beside what the build needs: xvfb openbox xdotool imagemagick dbus at-spi2-core python3-pyatspi.
set -euo pipefail
[ $# -ge 2 ] || { sed -n '2,8s/^# //p' "$0" >&2; exit 2; }
here=$(cd "$(dirname "$0")" && pwd)
build=$(realpath "${3:-$here/../../build}")
mkdir -p "$2"
home=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$home"' EXIT

disk=$home/disk
mkdir -p "$disk" "$home/config/pakrune"
cp -r "$build/examples/kt500-app" "$disk/"
chmod 644 "$disk/kt500-app/run.sh"

display_file=$home/display
Xvfb -displayfd 4 -screen 0 "${SCREEN:-1280x800}x24" 4>"$display_file" 2>/dev/null &
until [ -s "$display_file" ]; do sleep 0.05; done
DISPLAY=:$(cat "$display_file")
export DISPLAY HOME="$home" XDG_CONFIG_HOME="$home/config" XDG_RUNTIME_DIR="$home" PAKRUNE_DRIVES="C=$disk;Z=/"
export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
unset WAYLAND_DISPLAY QT_QPA_PLATFORM
if [ -n "${WAYLAND:-}" ]; then
  weston --backend=x11-backend.so --width=1240 --height=760 --socket=walk --no-config >/dev/null 2>&1 &
  until [ -S "$XDG_RUNTIME_DIR/walk" ]; do sleep 0.05; done
  export WAYLAND_DISPLAY=walk QT_QPA_PLATFORM=wayland
else
  openbox >/dev/null 2>&1 &
fi
"$build/kt500sim" --root "$home/terminal" --install >"$home/events" 2>&1 &
until grep -q '^listening' "$home/events"; do sleep 0.05; done
dbus-run-session -- /usr/bin/python3 "$here/walk.py" "$1" "$2" "$build/pakrune" "$disk" 2>"$home/errors" ||
  { grep -v dbus-daemon "$home/errors" >&2; exit 1; }
grep '^installed\|^member' "$home/events"
