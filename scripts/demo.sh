#!/bin/sh
# demo.sh [PHOTO]: installs what is missing, builds, and saves an edited photo as an app does:
# PHOTO, or a scene that the demo draws. Leaves pictures to look at in build/demo/ and the tool at
# build/release/bin/kvtool.
set -eu
case "${1:-}" in
  '' | /*) photo=${1:-} ;;
  *) photo=$PWD/$1 ;;
esac
cd "$(dirname "$0")/.."

scripts/setup.sh build
scripts/build.sh release demo kvtool
build/release/bin/demo build/demo ${photo:+"$photo"}
