#!/bin/sh
# build.sh PRESET [TARGET...]: configures a preset where that is needed and builds it.
set -eu
cd "$(dirname "$0")/.."

preset=$1
shift
launcher=''
! command -v ccache >/dev/null || launcher=-DCMAKE_CXX_COMPILER_LAUNCHER=ccache
[ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" $launcher >/dev/null
if [ $# -gt 0 ]; then
  cmake --build --preset "$preset" --target "$@"
else
  cmake --build --preset "$preset"
fi
