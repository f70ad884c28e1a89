#!/bin/sh
# setup.sh [build|check|bench]: installs what is missing of the Debian packages that building and
# testing need (build, the default), that scripts/check.sh needs too, or that scripts/bench.sh
# needs too. docs/dependencies.md says what each is for. Only where something is missing it needs
# root, or sudo.
set -eu

linked=''
while IFS='|' read -r name _ package _; do
  case $name in [A-Z]*) linked="$linked $package" ;; esac
done <"${0%/*}/../cmake/third_party.txt"
build="g++ cmake ninja-build pkg-config libcli11-dev libfmt-dev libgtest-dev libgmock-dev python3
  $linked"
check='git clang-14 clang-format-14 clang-tidy-14 libclang-rt-14-dev
  libimage-exiftool-perl exiv2 libjpeg-turbo-progs pngcheck imagemagick'
bench='libboost-dev libcairo2-dev libexif-dev libexiv2-dev libopencv-imgproc-dev libplist-dev
  libvips-dev qtbase5-dev'

case "${1:-build}" in
  build) wanted=$build ;;
  check) wanted="$build $check" ;;
  bench) wanted="$build $bench" ;;
  *) echo "usage: setup.sh [build|check|bench]" >&2; exit 2 ;;
esac

missing=''
for package in $wanted; do
  case "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)" in
    installed) ;;
    *) missing="$missing $package" ;;
  esac
done
[ -n "$missing" ] || exit 0

as_root=''
if [ "$(id -u)" -ne 0 ]; then
  as_root=sudo
  command -v sudo >/dev/null || {
    echo "setup.sh: root, or sudo, is needed to install$missing" >&2
    exit 1
  }
fi
echo "Installing$missing, as root${as_root:+ by sudo}"
$as_root apt-get update -qq
# shellcheck disable=SC2086  # a list of words
$as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing
