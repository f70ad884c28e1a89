#!/bin/sh
# demo.sh [PHOTO]: installs what is missing, builds, and saves an edited photo as an app does:
# PHOTO, a JPEG or PNG, or a scene that the demo draws. Leaves pictures to look at in build/demo/,
# in place of those of the last time, and the tool at build/release/bin/kvtool.
set -eu
usage() { sed -n '2,/^set/s/^# //p' "$0"; }
refuse() { echo "demo.sh: $1" >&2; exit 2; }
case "${1:-}" in
  -h | --help) usage; exit ;;
  -*) refuse "there is no option $1; demo.sh [PHOTO]" ;;
  '' | /*) photo=${1:-} ;;
  *) photo=$PWD/$1 ;;
esac
[ $# -le 1 ] || refuse 'one photo at a time; demo.sh [PHOTO]'
cd "$(dirname "$0")/.."
results=$PWD/build/demo

# Before minutes are spent.
if [ -n "$photo" ]; then
  [ -e "$photo" ] || refuse "$photo: there is no such file"
  [ -f "$photo" ] || refuse "$photo: that is not a file"
  [ -r "$photo" ] || refuse "$photo: permission denied"
  [ "$(cd "$(dirname "$photo")" && pwd -P)" != "$results" ] ||
    refuse "$photo: the demo clears this folder"
  case "$(od -An -tx1 -N4 "$photo" | tr -d ' ')" in
    ffd8ff* | 89504e47) ;;
    *) refuse "$photo: neither JPEG nor PNG" ;;
  esac
fi

scripts/setup.sh build
scripts/build.sh release demo kvtool
rm -f "$results"/scene.jpg "$results"/before.* "$results"/after.* "$results"/thumbnail.*
build/release/bin/demo "$results" ${photo:+"$photo"}
