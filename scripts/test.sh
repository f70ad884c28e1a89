#!/bin/sh
# test.sh: installs what is missing, builds everything and passes all tests. Leaves the tool at
# build/release/bin/kvtool.
set -eu
cd "$(dirname "$0")/.."

scripts/setup.sh build
scripts/build.sh release
ctest --preset release --parallel "$(nproc)"
