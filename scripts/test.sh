#!/bin/sh
# test.sh: installs what is missing, builds everything and passes all tests; says which were skipped
# and what would run them. Leaves the tool at build/release/bin/kvtool.
set -eu
cd "$(dirname "$0")/.."

scripts/setup.sh build
scripts/build.sh release
ctest --preset release --parallel "$(nproc)"
awk '/^[0-9]+\/[0-9]+ Testing: / { test = $3 }
     /: Skipped$/ { getline why; print "Skipped " test ": " why }' \
  build/release/Testing/Temporary/LastTest.log
