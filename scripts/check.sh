#!/bin/bash
# check.sh [PART...]: what a change must pass beside scripts/test.sh. Without a part those that CI
# runs: lint, compilers, agreement, package and asan. By name also tidy and tsan, which take long.
set -euo pipefail
cd "$(dirname "$0")/.."
sources() { git ls-files -co --exclude-standard -- "$@"; }
fail() { echo "check: $*" >&2; exit 1; }

lint() {
  echo '== format'
  sources '*.cpp' '*.h' | xargs clang-format-14 --dry-run --Werror

  echo '== layers: third-party and system headers stay inside platform/'
  # Standard headers bear no slash and no extension; ours begin with framework_utility/.
  local foreign
  foreign=$(sources 'framework_utility/*.cpp' 'framework_utility/*.h' |
    grep -v '^framework_utility/platform/' |
    xargs grep -nE '^ *# *include' |
    grep -vE '<framework_utility/[a-z0-9_/]+\.h>|<[a-z_]+>') || true
  [ -z "$foreign" ] || fail $'only platform/ may include these:\n'"$foreign"

  echo '== includes: a source names its own header first, so that the header needs no other'
  local file
  for file in $(sources 'framework_utility/*.cpp'); do
    [ ! -f "${file%.cpp}.h" ] || [ "$(grep -m1 '^#include' "$file")" = "#include <${file%.cpp}.h>" ] ||
      fail "$file does not include its header first"
  done

  echo '== tests: every test, example, benchmark and fuzz target is built'
  for file in $(sources 'tests/*.cpp' 'examples/*.cpp' 'fuzz/*.cpp' 'bench/*.cpp'); do
    local name
    case $file in
      tests/consumer/* | tests/layers/*) continue ;;  # projects of their own
      examples/*/*) name=$(basename "$file") ;;
      examples/* | *_fuzz.cpp | *_bench.cpp)  # named without their ending
        name=$(basename "$file" .cpp) name=${name%_fuzz} name=${name%_bench} ;;
      *) name=$(basename "$file") ;;
    esac
    grep -qw "$name" "$(dirname "$file")/CMakeLists.txt" || fail "$file has no target"
  done

  echo '== headers: each public one compiles alone'
  scripts/build.sh release all_verify_interface_header_sets
}

agreement() {
  echo '== agreement with independent readers and writers'
  scripts/build.sh release kvtool demo
  build/release/bin/demo build/demo >/dev/null
  tests/agreement/agreement.py build/release/bin/kvtool build/demo/scene.jpg
}

package() {
  local shared
  for shared in OFF ON; do
    echo "== package: shared libraries $shared"
    tests/consumer/run.sh $shared
  done
}

compilers() {
  # Own programs of the library's users may be of a later language level than the library.
  echo '== headers as C++23, with both compilers'
  local compiler
  for compiler in g++ clang++-14; do
    sources 'framework_utility/*.h' | sed 's/.*/#include <&>/' |
      $compiler -std=c++2b -I. -Wall -Wextra -Wpedantic -Werror -fsyntax-only -x c++ -
  done
}

sanitized() {
  echo "== tests under $1"
  scripts/build.sh "$1"
  ctest --preset "$1" --parallel "$(nproc)"
}
asan() { sanitized asan; }
tsan() { sanitized tsan; }

tidy() {
  echo '== clang-tidy'
  scripts/build.sh release
  run-clang-tidy-14 -quiet -p build/release "$PWD/framework_utility/.*\.cpp$" \
    >build/clang-tidy.txt 2>&1 || { grep -E 'error:|warning:' build/clang-tidy.txt; fail clang-tidy; }
}

scripts/setup.sh check
[ $# -gt 0 ] || set -- lint compilers agreement package asan
for part; do "$part"; done
echo 'check: passed'
