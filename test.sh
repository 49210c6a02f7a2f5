#!/usr/bin/env bash
# Installs what is missing, builds, and runs all tests, offscreen.
set -euo pipefail
cd "$(dirname "$0")"
tools/setup.sh build test
echo "== building"
tools/build.sh release
echo "== testing"
ctest --test-dir build --output-on-failure -j2 "$@"
