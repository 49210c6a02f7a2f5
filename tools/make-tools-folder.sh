#!/bin/sh
# Fills the program's tools folder: each name that the program calls leads to the host's tool.
set -eu
bin=$1
mkdir -p "$bin"
lead() { # NAME-IN-FOLDER HOST-TOOL
  path=$(command -v "$2") || { echo "make-tools-folder: $2 is not installed" >&2; exit 1; }
  ln -sfn "$path" "$bin/$1"
}
for tool in tar chmod find ls ar; do lead "$tool.exe" "$tool"; done
lead cp cp
ln -sfn chown.exe "$bin/chgrp.exe"

# The accounts of the terminal, which this machine need not have.
etc=$(dirname "$bin")/etc
mkdir -p "$etc"
{
  echo "root:x:0:0:root:/:/bin/sh"
  for number in 1 2 3 4 5 6 7 8; do echo "usr$number:x:$((499 + number)):1:usr$number:/home/usr$number:/bin/sh"; done
} >"$etc/passwd"
printf 'root:x:0:\nKT500:x:1:\nusers:x:1:\n' >"$etc/group"

# tar looks up gzip and bzip2: both are our own program, which finds the host's tools under these names. The
# fast ones may come and go: their links may lead nowhere.
lead gzip.plain gzip
lead bzip2.plain bzip2
ln -sfn "$(command -v pigz || echo /usr/bin/pigz)" "$bin/gzip.fast"
ln -sfn "$(command -v lbzip2 || echo /usr/bin/lbzip2)" "$bin/bzip2.fast"
for tool in gzip bzip2; do ln -sfn compress "$bin/$tool"; done
