#!/usr/bin/env bash
# Installs the Debian packages that the commands below need and that are missing. Usage: tools/setup.sh [build|test|check]...
set -euo pipefail
export DEBIAN_FRONTEND=noninteractive
packages=(
  g++ cmake ninja-build ccache       # compiler and build
  qt6-base-dev qt6-base-dev-tools    # windows
  libqt6svg6                         # the plugin that draws the SVG pictures of the file lists (run time only)
  libgtest-dev                       # tests
  tar gzip bzip2 coreutils findutils binutils # the tools that the program drives (binutils: ar, for .ipk)
  pigz lbzip2                        # packing on every core
  libisal-dev                        # decompressing four times as fast as gzip
  fonts-dejavu-core                  # a font for windows on a bare system
)
for group in "$@"; do
  case $group in
    build) ;;
    test)
      packages+=(
        libarchive-tools busybox # bsdtar and busybox tar, to read and write archives beside ours
        xvfb dbus at-spi2-core   # a screen and the accessibility bus, for a11y_test
      )
      ;;
    check) packages+=(clang-format clang-tidy git) ;;
  esac
done
missing=()
for package in "${packages[@]}"; do
  [ "$(dpkg-query -W -f '${Status}' "$package" 2>/dev/null)" = "install ok installed" ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0
echo "== installing: ${missing[*]}"
# A fresh system may run its own updates: their locks are waited for.
patience=600 # seconds
install=(apt-get install -y -qq -o "DPkg::Lock::Timeout=$patience" --no-install-recommends "${missing[@]}")
if [ "$(id -u)" = 0 ]; then
  as_root=()
elif command -v sudo >/dev/null; then
  as_root=(sudo --preserve-env=DEBIAN_FRONTEND)
else
  echo "As root, run: apt-get update && ${install[*]}" >&2
  exit 1
fi
update() { # apt-get update does not wait for the lists' lock, only says that it could not get it
  local said
  for ((waited = 0; ; waited += 5)); do
    said=$("${as_root[@]}" apt-get update -qq 2>&1) && return 0
    if [ "$waited" -ge "$patience" ] || ! grep -q 'Could not get lock' <<<"$said"; then
      echo "$said" >&2
      return 1
    fi
    sleep 5
  done
}
update
"${as_root[@]}" "${install[@]}" >/dev/null
