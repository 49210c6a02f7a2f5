#!/usr/bin/env bash
# The program without a display, as a build script calls it. Usage: batch_test.sh BUILD-FOLDER
set -euo pipefail
pakrune=$1/pakrune
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM
world=$(mktemp -d)
trap 'kill -KILL ${packer:-} ${tar:-} 2>/dev/null || true; rm -rf "$world"' EXIT
export HOME=$world/home XDG_CONFIG_HOME=$world/config TMPDIR=$world/tmp
unset PAKRUNE_DRIVES
mkdir -p "$HOME/pkg/usr8" "$TMPDIR"
cd "$HOME"
echo text >pkg/a.txt
echo text >"pkg/b c"
echo text >pkg/-x
echo text >pkg/.hidden
echo text >pkg/usr8/set.ini

fail() { echo "batch_test: $*" >&2; cat "$world/err" >&2; exit 1; }
run() { # EXPECTED-STATUS ARGUMENT...
  local expected=$1 status=0
  shift
  "$pakrune" "$@" >"$world/out" 2>"$world/err" || status=$?
  [ "$status" = "$expected" ] || fail "status $status, not $expected: $*"
}
holds() { # MEMBER...: exactly these, in this order
  local listing
  listing=$(tar -tPf "$(cat "$world/out")")
  [ "$listing" = "$(printf '%s\n' "$@")" ] || fail "members: $listing"
}

run 0 -qpack pkg a.txt "b c" -x .hidden usr8
[ "$(cat "$world/out")" = "$HOME/pkg/pkg.tgz" ] || fail "output: $(cat "$world/out")"
holds ./-x .hidden a.txt "b c" ../usr8/ ../usr8/set.ini
tar -tvPf pkg/pkg.tgz --numeric-owner | grep -qv ' 500/1 ' && fail "an entry is not owned by 500/1"
before=$(cksum <pkg/pkg.tgz)

run 1 -qpack pkg a.txt "b c" -x .hidden usr8 # would replace
grep -q "already exists" "$world/err" || fail "no question"
[ ! -s "$world/out" ] || fail "a refused run names an archive"
run 0 --yes -qpack pkg a.txt "b c" -x .hidden usr8/ # as a shell completes it
[ "$(cksum <pkg/pkg.tgz)" = "$before" ] || fail "packing twice gave other bytes"

run 0 --yes -qpack pkg a.txt a.txt # is one entry
[ "$(cat "$world/out")" = "$HOME/pkg/a.tgz" ] || fail "named twice: $(cat "$world/out")"
rm pkg/a.tgz
run 1 -qpack pkg mistyped
[ "$(cksum <pkg/pkg.tgz)" = "$before" ] || fail "a mistyped name changed the archive"
run 1 --yes -qpack pkg a.txt usr8 mistyped # what matches is still packed
holds a.txt ../usr8/ ../usr8/set.ini
run 1 -qpack nowhere a.txt
run 1 -qpack pkg
run 1 -qpack
run 0 --yes -qpack pkg # everything, hidden entries too, never the old archive
holds ./-x .hidden a.txt "b c" ../usr8/ ../usr8/set.ini
run 0 --yes $'-qpack\r\nC:\\pkg\r\na.txt\r\nb c' # one argument with all fields
holds a.txt "b c"

run 0 -extract pkg pkg.tgz out/new
cmp pkg/a.txt out/new/a.txt && cmp "pkg/b c" "out/new/b c" || fail "not what was packed"
echo mine >out/new/a.txt
run 1 -extract pkg pkg.tgz out/new
[ "$(cat out/new/a.txt)" = mine ] || fail "a file was replaced unasked"
run 0 --yes -extract pkg pkg.tgz out/new
cmp pkg/a.txt out/new/a.txt || fail "the file was not replaced"
head -c 100 pkg/pkg.tgz >pkg/cut.tgz
QT_QPA_PLATFORM=offscreen timeout 60 "$pakrune" --yes -extract pkg pkg.tgz out/new >"$world/out" 2>"$world/err" ||
  fail "with windows --yes does not answer: status $?"
run 1 --yes -extract pkg cut.tgz out/cut
grep -q "end of file" "$world/err" || fail "nothing said of the missing end"
run 1 -extract pkg none.tgz out/none
# A member below a link out of the folder: what tar says of it stands there once.
mkdir -p evil/link && echo x >evil/link/new && ln -s "$HOME/evil" evil/up
tar -cf pkg/bad.tar --transform 's,^up,link,' -C evil up link/new
run 1 -extract pkg bad.tar out/bad
[ "$(grep -c "tar: link/new: Cannot open: Not a directory" "$world/err")" = 1 ] || fail "bad.tar: $(cat "$world/err")"
[ ! -e evil/new ] || fail "bad.tar led out of its folder"
run 1 -extract nowhere pkg.tgz out/none
run 1 -extract pkg pkg.tgz
[ ! -e out/none ] || fail "a folder was made for nothing"

(cd pkg/usr8 && run 0 --yes -qpack .. a.txt "b c")
[ "$(cat "$world/out")" = "$HOME/pkg/pkg.tgz" ] || fail "output: $(cat "$world/out")"
run 0 --batch --yes -qpack "$HOME/pkg" "b c"
[ "$(cat "$world/out")" = "$HOME/pkg/b c.tgz" ] || fail "output: $(cat "$world/out")"

# Same input, same bytes: two checkouts with other umasks and times, another zone; two users, where there are two.
checkout() { # FOLDER UMASK
  (umask "$2"; mkdir -p "$1/app/usr8/deep"; echo one >"$1/app/one"; echo s >"$1/app/usr8/deep/s"; ln -s one "$1/app/link"
   touch "$1/app/run.sh"; chmod +x "$1/app/run.sh")
}
checkout first 002
sleep 0.01
checkout second 022
export SOURCE_DATE_EPOCH=1700000000
TZ=UTC run 0 --umask 022 --output "$world/first.tgz" -qpack first/app one link run.sh usr8
TZ=Asia/Tokyo run 0 --umask 022 --output "$world/second.tgz" -qpack second/app one link run.sh usr8
cmp "$world/first.tgz" "$world/second.tgz" || fail "two checkouts gave two archives"
tar -tvPf "$world/first.tgz" --numeric-owner --utc | grep -v ' 500/1 .* 2023-11-14 22:13 ' && fail "an own time or owner"
[ "$(stat -c %a first/app/one)" = 664 ] || fail "a mode changed on disk"
as_nobody=(setpriv --reuid 65534 --regid 65534 --clear-groups env XDG_CONFIG_HOME="$world/nobody")
if [ "$(id -u)" = 0 ] && "${as_nobody[@]}" test -x "$pakrune"; then # who may not get at the program below a closed home
  chmod -R a+rX "$HOME" "$world" && chmod 777 "$world" "$TMPDIR"
  "${as_nobody[@]}" "$pakrune" --umask 022 --output "$world/third.tgz" -qpack first/app one link run.sh usr8 >/dev/null 2>"$world/err" ||
    fail "nobody could not pack"
  cmp "$world/first.tgz" "$world/third.tgz" || fail "two users gave two archives"
fi
unset SOURCE_DATE_EPOCH
run 1 --owner nobody -qpack first/app one
grep -q "owner cannot be 'nobody'" "$world/err" || fail "no word about the owner"
run 1 --time 5 -extract pkg pkg.tgz out/none

mkfifo special.tgz && mkdir -p special
run 1 --yes -qpack . special # nothing waits for a pipe
grep -q "special.tgz' is not a file" "$world/err" || fail "a pipe is no output"
rm special.tgz && rmdir special

# A file of zeros that tar takes long over.
mkdir -p slow/usr8 && echo old >slow/slow.tgz && truncate -s 40G slow/zeros && echo s >slow/small
start() { # FOLDER NAME...: packs in the background until tar has begun
  "$pakrune" --yes -qpack "$@" >"$world/out" 2>"$world/err" &
  packer=$!
  for _ in $(seq 1000); do
    [ -n "$(find . "$TMPDIR" -path '*_PK*.tgz')" ] || { sleep 0.02; continue; }
    tar=$(cut -d ' ' -f 1 "/proc/$packer/task/$packer/children")
    return
  done
  fail "tar has not begun"
}
scratch() { find "$HOME" "$TMPDIR" -name '_PK*'; }
# An end signal, with a copy of usr8 and without: soon, with its own status, and nothing is made or printed.
for signal in TERM HUP; do
  if [ "$signal" = TERM ]; then start slow zeros usr8; else start slow zeros small; fi
  status=0
  began=${EPOCHREALTIME/./}
  kill -"$signal" "$packer" && wait "$packer" || status=$?
  [ "$status" = $((128 + $(kill -l "$signal"))) ] || fail "status $status after SIG$signal"
  [ $((${EPOCHREALTIME/./} - began)) -lt 1000000 ] || fail "SIG$signal took long"
  [ ! -s "$world/out" ] && [ "$(cat slow/slow.tgz)" = old ] && [ -z "$(scratch)" ] || fail "what SIG$signal left"
  [ "$(grep -c " Stopped: creating C:.slow.slow.tgz" "$world/err")" = 1 ] || fail "no word of the stop"
  grep -qi "reinstall" "$world/err" && fail "a stop is no fault of the installation"
done

start slow zeros small
kill -KILL "$packer" "$tar" && wait "$packer" 2>/dev/null || true
[ -n "$(scratch)" ] || fail "nothing left to sweep"
packer='' tar=''
left=$(basename "$(scratch)")
rm slow/zeros
run 0 --yes -qpack slow small "$left"
holds small
[ -z "$(scratch)" ] || fail "what a killed run left was not swept"

for _ in 1 2 3 4; do # nobody agreed to replace what another of them made
  "$pakrune" -qpack pkg/usr8 set.ini >>"$world/made" 2>/dev/null &
done
wait
[ "$(wc -l <"$world/made")" = 1 ] || fail "an archive was lost: $(cat "$world/made")"
rm pkg/usr8/set.tgz

# A tool that has been taken over writes where its run may, and nowhere else, as far as the system can see to it.
taken=$world/taken
mkdir -p "$taken" && cp "$1/pakrune" "$taken/" && cp -r "$1/bin" "$taken/bin"
printf '#!/bin/sh\n(echo x >"%s") 2>/dev/null\n(echo y >>"%s/outside") 2>/dev/null\nexec /usr/bin/tar "$@"\n' "$HOME/outside" "$HOME/free" >"$world/tar"
mkdir -p free
install -m 755 "$world/tar" "$taken/bin/tar.exe.new" && mv "$taken/bin/tar.exe.new" "$taken/bin/tar.exe"
if "$1/bin/confine" --parent=$$ --landlock --write="$HOME/free" -- "$1/bin/confine" confine --probe 2>/dev/null; then
  pakrune=$taken/pakrune run 0 --yes -extract pkg pkg.tgz free/new
  cmp pkg/a.txt free/new/a.txt || fail "not what was packed"
  pakrune=$taken/pakrune run 0 --yes --output "$HOME/free/new.tgz" -qpack pkg a.txt
  [ ! -e outside ] && [ ! -e free/outside ] || fail "a tool wrote outside of its run's folders"
fi

chmod 000 pkg/a.txt
mkdir -p full && cp pkg/-x full/y
if [ "$(id -u)" != 0 ]; then run 1 --yes -qpack pkg a.txt "b c"; fi
ls "$TMPDIR" "$HOME/pkg" | grep -q _PK && fail "a scratch folder was left"

for arguments in "" "-d pkg" "-pack pkg a.txt" pkg; do
  # shellcheck disable=SC2086
  run 1 $arguments
  [ "$(wc -l <"$world/err")" = 1 ] || fail "not one line: '$arguments'"
done
says() { # STATUS TEXT ARGUMENT...
  local expected=$1 text=$2
  shift 2
  run "$expected" "$@"
  grep -qF -- "$text" "$world/err" || fail "not said: $text"
}
says 1 "no option --bach" --bach -qpack pkg a.txt
says 1 "--batch stands before" --batch -d pkg
says 1 "no drive 'Q:'" -extract pkg pkg.tgz 'Q:\out'
says 1 "network path" -qpack '\\server\share' a.txt
says 1 "-qpack needs a folder and names" -qpack "" a.txt
says 1 "-extract needs a folder" -extract pkg pkg.tgz ""
says 1 "nothing behind it: 'dir'" -extract pkg pkg.tgz out dir # a name that was not quoted

# Started in a folder that has been deleted; with its standard streams closed; under a display that is none.
mkdir gone && cd gone && rmdir ../gone
says 1 "is gone" -qpack pkg a.txt
cd "$HOME"
status=0
"$pakrune" --yes -qpack pkg "b c" >&- 2>&- <&- || status=$?
[ "$status" = 0 ] && tar -tf "pkg/b c.tgz" >/dev/null || fail "closed streams: status $status"
DISPLAY=:60077 run 0 --yes -qpack pkg "b c"
[ "$(cat "$world/out")" = "$HOME/pkg/b c.tgz" ] || fail "no display that opens: $(cat "$world/out")"

# A name with a colon is that folder, not another one.
mkdir out1 && echo mine >out1/a.txt
run 0 -extract pkg "b c.tgz" 'C:\out:1'
[ -f "out:1/b c" ] && [ "$(cat out1/a.txt)" = mine ] || fail "C:\\out:1 led elsewhere"
run 0 --yes -qpack C:/pkg/usr8 set.ini
holds ../usr8/ ../usr8/set.ini

run 0 --help
grep -q -- -qpack "$world/out" || fail "--help says nothing of -qpack"
run 0 --version
grep -q '^pakrune 1' "$world/out" || fail "--version"
for arguments in --version "--yes -qpack pkg a.txt" "--yes -extract pkg a.tgz out"; do
  status=0
  # shellcheck disable=SC2086
  "$pakrune" $arguments >/dev/full 2>"$world/err" || status=$?
  [ "$status" = 1 ] || fail "full standard output: status $status: $arguments"
  grep -q "standard output: No space left" "$world/err" || fail "full standard output: $arguments"
done
echo "batch_test: passed"
