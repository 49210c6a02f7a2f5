#!/usr/bin/env bash
# Packing 200 MB with -qpack against the same tar command by hand: medians of interleaved runs.
# Usage: bench/pack.sh [BUILD-FOLDER]. Ends with 1 when the bound is missed.
set -euo pipefail
program=$(realpath "${1:-build}/pakrune")
bound=1.03
rounds=5
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_CONFIG_HOME=$work/config LC_ALL=C.UTF-8

for folder in one two; do # one alone would be packed by its contents
  mkdir "$work/$folder"
  for i in $(seq 50); do # half of it can be compressed
    { head -c 1000000 /dev/urandom; seq 1000000 1124999; } >"$work/$folder/file$i"
  done
done

ours() { "$program" --batch --yes -qpack "$work" one two >"$work/made" 2>"$work/messages"; }
by_hand() {
  QUOTING_STYLE=escape TAR_OPTIONS="--sort=name --no-unquote" \
    tar -C "$work" -zcv --owner=500 --group=1 --numeric-owner -f "$work/hand.tgz" one two >/dev/null
}
milliseconds() { # COMMAND
  local begin=${EPOCHREALTIME/./}
  "$1" || { echo "$1 failed" >&2; cat "$work/messages" >&2; exit 2; }
  echo $(((${EPOCHREALTIME/./} - begin) / 1000))
}
median() { sort -n | sed -n "$((rounds / 2 + 1))p"; }

for _ in $(seq "$rounds"); do
  milliseconds by_hand >>"$work/hand"
  milliseconds ours >>"$work/ours"
done
# Only the same work may be compared.
cmp <(gzip -dc "$(cat "$work/made")" | tar -tv) <(gzip -dc "$work/hand.tgz" | tar -tv)
awk -v ours="$(median <"$work/ours")" -v hand="$(median <"$work/hand")" -v bound="$bound" 'BEGIN {
  missed = ours > bound * hand
  printf "packing 200 MB / the same tar by hand: %.3f (at most %.2f; %d ms, by hand %d ms)%s\n",
         ours / hand, bound, ours, hand, missed ? "  MISSED" : ""
  exit missed
}'
