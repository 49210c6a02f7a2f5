#!/usr/bin/env bash
# Configures and builds. Usage: tools/build.sh PRESET [CMAKE-BUILD-OPTION]...
# A build folder remembers where its checkout stood; one that was moved or renamed since is made anew.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=$1
shift
folder=build
[ "$preset" = release ] || folder=build-$preset
log=$folder.log
cache=$folder/CMakeCache.txt
if [ -f "$cache" ] && [ "$(sed -n 's/^CMAKE_HOME_DIRECTORY:INTERNAL=//p' "$cache")" != "$(pwd -P)" ]; then
  rm -rf "$folder"
fi
rm -f "$folder"/*_autogen/include/ui_*.h # forms of a build from before they were made by rules of their own
cmake --preset "$preset" >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
cmake --build --preset "$preset" "$@" >>"$log" 2>&1 || { tail -40 "$log" >&2; exit 1; }
