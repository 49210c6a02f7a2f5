#!/usr/bin/env bash
# Installs what is missing, builds, and starts Pakrune at the examples. Without a display, or with --demo: the main job
# on the examples, from files to what a terminal then holds.
set -euo pipefail
cd "$(dirname "$0")"
tools/setup.sh build
echo "== building"
tools/build.sh release --target app

folder=$PWD/build/examples/kt500-app
if [ "${1:-}" != --demo ] && [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  exec build/pakrune -d "$folder" # the window, at the examples
fi

echo "== packing $folder (no display)"
archive=$(build/pakrune --batch --yes -qpack "$folder" run.sh readme.txt kt500hello usr8)
[ -s "$archive" ] || { echo "run.sh: no archive was made" >&2; exit 1; }
echo "== $archive, as plain tar sees it (mode, numeric owner/group)"
listing=$(tar -tvPf "$archive" --numeric-owner)
echo "$listing"
for member in run.sh readme.txt kt500hello ../usr8/settings.ini; do
  grep -qE " 500/1 .* ${member//./\\.}\$" <<<"$listing" || { echo "run.sh: $member is missing or not owned by 500/1" >&2; exit 1; }
done
echo "== sending it to a simulated terminal"
tools/demo.sh build "$archive"
echo "== done"
