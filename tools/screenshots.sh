#!/usr/bin/env bash
# Makes docs/screenshots/ anew: every window, light and dark, at scale 1 and 2. Usage: tools/screenshots.sh [BUILD-FOLDER]
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath "${1:-build}")
home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT

# A disk that looks alike each time.
disk=$home/disk
mkdir -p "$disk"
cp -r "$build/examples/kt500-app" "$disk/"
chmod 644 "$disk/kt500-app/run.sh"
mkdir -p "$disk/tools" "$home/data/pakrune"
cat >"$disk/tools/wdx.exe" <<'EOF'
#!/bin/sh
echo "Connecting on COM$2 at $4"
printf 'Sending %s: 40%%\rSending %s: 100%%\n' "$6" "$6"
EOF
chmod +x "$disk/tools/wdx.exe"
cp "$disk/tools/wdx.exe" "$build/wdx.exe"
trap 'rm -rf "$home" "$build/wdx.exe"' EXIT
find "$disk" -exec touch -d '2026-05-28 20:26:40' {} +
tar -C "$disk/kt500-app" --owner=500 --group=1 --numeric-owner -czf "$disk/kt500-app.tgz" .

for scale in 1 2; do
  for look in light dark; do
    env -u DISPLAY -u WAYLAND_DISPLAY LC_ALL=C.UTF-8 LANG=en_US.UTF-8 TZ=UTC QT_QPA_PLATFORM=offscreen QT_FONT_DPI=96 \
      QT_SCALE_FACTOR="$scale" HOME="$home" XDG_CONFIG_HOME="$home/config" XDG_DATA_HOME="$home/data" XDG_RUNTIME_DIR="$home" \
      PAKRUNE_DRIVES="C=$disk;Z=/" PAKRUNE_COM1=/dev/ttyS0 \
      "$build/screenshots" "docs/screenshots/$look-$scale" "$look"
  done
done
