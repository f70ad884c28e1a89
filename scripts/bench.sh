#!/bin/sh
# bench.sh: installs the peers, builds the benchmarks and runs them on one core. The last column is
# each row's time over the first row's. Files stand in memory (/dev/shm) unless a row says else.
set -eu
cd "$(dirname "$0")/.."

scripts/setup.sh bench
scripts/build.sh bench
for program in build/bench/bin/*_bench; do
  taskset -c 1 "$program"
done
