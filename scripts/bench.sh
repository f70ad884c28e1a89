#!/bin/sh
# bench.sh: installs the peers, builds the benchmarks and runs them on one core. The last column is
# each row's time over the first row's. Files stand in memory (/dev/shm) unless a row says else.
set -eu
cd "$(dirname "$0")/.."

scripts/setup.sh bench
scripts/build.sh bench
# Skia, a peer that Debian has not: its row says so where this fails.
skia=build/bench/bench
[ -d $skia/node_modules ] || ! command -v npm >/dev/null ||
  npm install --prefix $skia --no-audit --no-fund --silent @napi-rs/canvas@1.1.1 || true
for program in build/bench/bin/*_bench; do
  taskset -c 1 "$program"
done
