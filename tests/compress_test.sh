#!/usr/bin/env bash
# The tools folder's gzip and bzip2: the same bytes on any number of cores, and the plain tools' own words.
set -euo pipefail
bin=$1/bin
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "compress_test: $*" >&2; exit 1; }
seq 1 400000 >"$work/data"
for tool in gzip bzip2; do
  "$bin/$tool" <"$work/data" >"$work/many"
  taskset -c "$(taskset -cp $$ | sed 's/.*: *//; s/[-,].*//')" "$bin/$tool" <"$work/data" >"$work/one"
  cmp "$work/many" "$work/one" || fail "$tool: the bytes depend on the number of cores"
  "$tool" -d <"$work/many" | cmp - "$work/data" || fail "$tool: the plain tool does not read it"
  "$bin/$tool" -d <"$work/many" | cmp - "$work/data" || fail "$tool -d"
  said=$(head -c 1000 "$work/many" | "$bin/$tool" -d 2>&1 >"$work/part" || true)
  [[ $said == *"$tool: "* ]] || fail "$tool -d says: $said"
  mkdir -p "$work/bare"
  cp "$bin/compress" "$work/bare/$tool"
  ln -s "$(command -v "$tool")" "$work/bare/$tool.plain"
  "$work/bare/$tool" <"$work/data" | "$tool" -d | cmp - "$work/data" || fail "$tool alone"
done
[ "$("$bin/gzip" </dev/null | od -An -tx1 -j4 -N4 | tr -d ' ')" = 00000000 ] || fail "a time stands in the header"
