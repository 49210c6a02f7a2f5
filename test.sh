#!/usr/bin/env bash
# Installs what is missing, builds, and runs all tests, offscreen.
set -euo pipefail
cd "$(dirname "$0")"
tools/setup.sh build
echo "== building"
cmake --preset release >build.log 2>&1 || { cat build.log >&2; exit 1; }
cmake --build --preset release >>build.log 2>&1 || { tail -40 build.log >&2; exit 1; }
echo "== testing"
ctest --test-dir build --output-on-failure -j2 "$@"
