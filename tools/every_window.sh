#!/usr/bin/env bash
# Makes the disk over which every window has something to show; it looks alike each time. Usage: tools/every_window.sh BUILD-FOLDER DISK
set -euo pipefail
build=$1 disk=$2
mkdir -p "$disk/tools"
cp -r "$build/examples/kt500-app" "$disk/"
chmod 644 "$disk/kt500-app/run.sh"
cat >"$disk/tools/wdx.exe" <<'EOF'
#!/bin/sh
echo "Connecting on COM$2 at $4"
printf 'Sending %s: 40%%\rSending %s: 100%%\n' "$6" "$6"
EOF
chmod +x "$disk/tools/wdx.exe"
find "$disk" -exec touch -d '2026-05-28 20:26:40' {} +
tar -C "$disk/kt500-app" --owner=500 --group=1 --numeric-owner -czf "$disk/kt500-app.tgz" .
