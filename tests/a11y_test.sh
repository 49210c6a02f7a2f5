#!/usr/bin/env bash
# Every window as those see it who use no mouse or no screen: through the accessibility bus, and by Tab. On a display, a
# bus and a disk of its own. Usage: a11y_test.sh BUILD-FOLDER
set -euo pipefail
build=$(realpath "$1")
for need in Xvfb dbus-run-session; do
  command -v "$need" >/dev/null || { echo "a11y_test: skipped, there is no $need (tools/setup.sh test)"; exit 77; }
done
[ -e /usr/share/dbus-1/services/org.a11y.Bus.service ] || { echo "a11y_test: skipped, there is no at-spi2-core (tools/setup.sh test)"; exit 77; }
world=$(mktemp -d)
trap 'kill ${screen:-} 2>/dev/null || true; rm -rf "$world"' EXIT
"$(dirname "$0")/../tools/every_window.sh" "$build" "$world/disk"
mkdir -p "$world/run" "$world/program"
chmod 700 "$world/run"
# The serial loader stands beside the program.
cp "$build/a11y_walk" "$world/disk/tools/wdx.exe" "$world/program/"
ln -s "$build/bin" "$build/Pakrune.chm" "$world/program/"

mkfifo "$world/display"
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$world/display" 2>/dev/null &
screen=$!
read -r display <"$world/display"
unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS AT_SPI_BUS_ADDRESS
export LC_ALL=C.UTF-8 TZ=UTC QT_FONT_DPI=96 QT_QPA_PLATFORM=xcb QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 DISPLAY=:$display
export HOME=$world XDG_CONFIG_HOME=$world/config XDG_DATA_HOME=$world/data XDG_RUNTIME_DIR=$world/run
export PAKRUNE_DRIVES="C=$world/disk;Z=/" PAKRUNE_COM1=/dev/ttyS0
timeout 60 dbus-run-session -- "$world/program/a11y_walk" 2>&1 | { grep -v '^dbus-daemon\|^SpiRegistry' || true; } | tee "$world/said"
every=34
grep -q "^$every windows, " "$world/said" || { echo "a11y_test: not $every windows were walked"; exit 1; }
