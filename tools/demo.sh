#!/usr/bin/env bash
# demo.sh BUILD_DIR ARCHIVE: sends an archive, as the dialog does, to a simulated terminal on this machine, and
# prints what the terminal then holds. Ends with 1, and says why, when any step fails.
set -euo pipefail
[ $# -eq 2 ] || { echo "demo.sh BUILD_DIR ARCHIVE" >&2; exit 2; }
build=$1 archive=$2
work=$(mktemp -d)
sim=
cleanup() {
  if [ -n "$sim" ]; then
    kill "$sim" 2>/dev/null || true
    wait "$sim" 2>/dev/null || true # it puts its own files away
  fi
  rm -rf "$work"
}
trap cleanup EXIT
fail() {
  echo "demo.sh: $1" >&2
  cat "$work/events" >&2 || true
  exit 1
}

"$build/kt500sim" --port 0 --root "$work/terminal" --install --once --limit 300000 >"$work/events" 2>&1 &
sim=$!
port=
for _ in $(seq 100); do
  port=$(sed -n 's/^listening .*://p' "$work/events")
  [ -z "$port" ] || break
  sleep 0.05
done
[ -n "$port" ] || fail "the terminal does not listen"

echo "== sending $archive to a terminal at 127.0.0.1:$port"
XDG_CONFIG_HOME=$work/config timeout --foreground 300 "$build/demo_send" "$archive" "$port" 2>"$work/errors" || { cat "$work/errors" >&2; fail "the archive was not sent"; }
wait "$sim" || fail "the terminal ended with an error"
sim=
cat "$work/events"
grep -q '^installed ' "$work/events" || fail "the terminal did not install it"
echo "== the terminal now holds (mode, numeric owner/group, size, name)"
sed -n 's/^member //p' "$work/events" | grep . || fail "the terminal holds nothing"
