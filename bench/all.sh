#!/usr/bin/env bash
# Builds and runs everything that measures; wants a quiet machine for about a quarter of an hour. Ends with 1
# when a bound is missed. What shows a window to an X server is bench/startup.sh.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset release -B build-bench -DPAKRUNE_BENCH=ON >build-bench.log
cmake --build build-bench -j2 >>build-bench.log
export QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8
status=0
for bench in run_bench listing_bench open_bench archive_bench net_bench perms_bench size_bench; do
  echo "== $bench"
  build-bench/bench/$bench build-bench 2>build-bench/$bench.log || status=1
done
exit $status
