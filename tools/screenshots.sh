#!/usr/bin/env bash
# Makes docs/screenshots/ anew: every window, light and dark, at scale 1 and 2. Usage: tools/screenshots.sh [BUILD-FOLDER]
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath "${1:-build}")
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT

disk=$home/disk
tools/every_window.sh "$build" "$disk"
mkdir -p "$home/data/pakrune"
cp "$disk/tools/wdx.exe" "$build/wdx.exe"
trap 'rm -rf "$home" "$build/wdx.exe"' EXIT

for scale in 1 2; do
  for look in light dark; do
    env -u DISPLAY -u WAYLAND_DISPLAY LC_ALL=C.UTF-8 LANG=en_US.UTF-8 TZ=UTC QT_QPA_PLATFORM=offscreen QT_FONT_DPI=96 \
      QT_SCALE_FACTOR="$scale" HOME="$home" XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data" XDG_RUNTIME_DIR="$home" \
      PAKRUNE_DRIVES="C=$disk;Z=/" PAKRUNE_COM1=/dev/ttyS0 \
      "$build/screenshots" "docs/screenshots/$look-$scale" "$look"
  done
done
