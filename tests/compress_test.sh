#!/usr/bin/env bash
# The tools folder's gzip and bzip2: the same bytes on any number of cores, and the plain tools' own words,
# whatever they read; alone with the plain tools, too.
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
  cp "$1/tests/compress_bare" "$work/bare/$tool"
  ln -s "$(command -v "$tool")" "$work/bare/$tool.plain"
  "$work/bare/$tool" <"$work/data" | "$tool" -d | cmp - "$work/data" || fail "$tool alone"
done
[ "$("$bin/gzip" </dev/null | od -An -tx1 -j4 -N4 | tr -d ' ')" = 00000000 ] || fail "a time stands in the header"

mkdir "$work/corpus"
cd "$work/corpus"
small=$work/small.gz
seq 1 30 | gzip -n >"$small"
body() { tail -c +11 "$small"; }
for ((size = 0; size <= $(stat -c %s "$small"); size++)); do head -c $size "$small" >cut-$size; done
for bits in 01 02 04 08 10 20 40 80 1f; do { head -c 3 "$small"; printf "\\x$bits"; tail -c +5 "$small"; } >bits-$bits; done
{ printf '\x1f\x8b\x08\x04\0\0\0\0\0\3\x02\0ab'; body; } >extra
{ printf '\x1f\x8b\x08\x08\0\0\0\0\0\3name\0'; body; } >name
{ printf '\x1f\x8b\x08\x08\0\0\0\0\0\3%05000d\0' 1; body; } >long-name
{ printf '\x1f\x8b\x08\x10\0\0\0\0\0\3words\0'; body; } >comment
{ printf '\x1f\x8b\x08\x02\0\0\0\0\0\3\xa7\x77'; body; } >header-sum
{ printf '\x1f\x8b\x08\0\0\0\0\0\0\3\1\3\0\xfc\xffabc'; printf '\xc2\x41\x24\x35\3\0\0\0'; } >stored
gzip -n </dev/null >nothing
head -c 100000000 /dev/zero | gzip -n >long
seq 8000 1500000 >"$work/lines"
gzip -n <"$work/lines" >lines
# A table of codes whose damage plain gzip sees at once, the library only 4 MiB from the beginning or later.
cp lines table
printf '\x7b' | dd of=table bs=1 seek=1293263 conv=notrunc status=none
for file in "$small" lines; do
  name=${file##*/}
  { head -c -8 "$file"; printf '\1\2\3\4'; tail -c 4 "$file"; } >"$name-sum"
  { head -c -4 "$file"; printf '\1\2\3\4'; } >"$name-size"
  cat "$file" "$small" nothing "$file" >"$name-members"
  head -c -9 "$name-members" >"$name-members-cut"
  { cat "$file"; echo garbage; } >"$name-garbage"
  { cat "$file"; head -c 600 /dev/zero; } >"$name-zeros"
done
reading() { # TOOL FILE: sum of the bytes, status and words
  "$1" -d <"$2" 2>"$work/words" | cksum
  echo "${PIPESTATUS[0]}" "$(<"$work/words")"
}
for file in *; do
  expected=$(reading gzip "$file")
  for tool in "$bin/gzip" "$work/bare/gzip"; do
    said=$(reading "$tool" "$file")
    [ "$said" = "$expected" ] || fail "$tool -d, $file: $said instead of $expected"
  done
done

# A file that begins behind other bytes is read again from there; a reader may leave early.
{ echo four; cat lines-sum; } >"$work/behind"
{ dd bs=5 count=1 status=none of="$work/four"; "$bin/gzip" -d 2>/dev/null || true; } <"$work/behind" |
  cmp - "$work/lines" || fail "begins elsewhere"
left() { "$1" -d <long 2>&1 | head -c 1 >"$work/one"; echo "${PIPESTATUS[0]}"; }
[ "$(left "$bin/gzip")" = "$(left gzip)" ] || fail "nobody reads any more"
if ldd "$bin/compress" | grep -q libisal; then
  mkdir "$work/alone"
  cp "$bin/compress" "$work/alone/gzip"
  "$work/alone/gzip" -d <lines-members | cmp - <(gzip -d <lines-members) || fail "plain gzip does the work"
fi
