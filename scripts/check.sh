#!/bin/bash
# check.sh [PART...]: what a change must pass beside scripts/test.sh. Without a part those that CI
# runs: lint, compilers, tidy, digest, agreement, package and asan. By name also tsan and analyze,
# which take long.
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
    local name folder
    case $file in
      tests/consumer/* | tests/layers/* | tests/mistakes/*) continue ;;  # built apart
      examples/*/*) name=$(basename "$file") ;;
      examples/* | *_fuzz.cpp | *_bench.cpp)  # named without their ending
        name=$(basename "$file" .cpp) name=${name%_fuzz} name=${name%_bench} ;;
      *) name=$(basename "$file") ;;
    esac
    folder=$(dirname "$file")
    [ -f "$folder/CMakeLists.txt" ] || folder=$(dirname "$folder")  # a room of its component
    grep -qw "$name" "$folder/CMakeLists.txt" || fail "$file has no target"
  done

  echo '== dependencies: docs/dependencies.md says of each what cmake/third_party.txt says'
  local package licence purpose
  while IFS='|' read -r _ _ package licence purpose; do
    grep -qF "$(echo "|$package|$licence|$purpose |" | tr -s ' ')" docs/dependencies.md ||
      fail "docs/dependencies.md does not say the same of $package"
  done < <(grep '^[A-Z]' cmake/third_party.txt)

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
  local compiler flags
  flags=$(grep '^[A-Z]' cmake/third_party.txt | cut -d'|' -f2 | xargs pkg-config --cflags |
    sed 's/-I/-isystem /g')
  # shellcheck disable=SC2086  # a list of words
  for compiler in g++ clang++-14; do
    sources 'framework_utility/*.h' | sed 's/.*/#include <&>/' |
      $compiler -std=c++2b -I. $flags -Wall -Wextra -Wpedantic -Werror -fsyntax-only -x c++ -
  done
}

digest() {
  echo '== geometry has the same bits with both compilers, unoptimised and optimised, with AVX2'
  scripts/build.sh release geometry_digest
  local folder=build/digest flags variant
  rm -rf $folder
  mkdir -p $folder
  build/release/tests/geometry/geometry_digest >$folder/release
  # Those that results could depend on, as the library is compiled with them.
  flags=$(grep -m1 'framework_utility/geometry/rectangle.cpp"' build/release/compile_commands.json |
    grep -oE ' -(f|mno-)[a-z=-]+') || fail 'the flags of the release build are not to be found'
  local variants=('g++ -O0' 'clang++-14 -O0' 'clang++-14 -O3')
  ! grep -qw avx2 /proc/cpuinfo ||
    variants+=('g++ -O3 -march=x86-64-v3' 'clang++-14 -O3 -march=x86-64-v3')
  for variant in "${variants[@]}"; do
    (
      # shellcheck disable=SC2086  # lists of words
      $variant -std=c++20 -I. $flags -o "$folder/$variant.program" tests/geometry/digest.cpp \
        framework_utility/geometry/{collage_segment,collage_shape_side,math,rectangle}.cpp \
        framework_utility/platform/foundation/values/{number_text,random,stop}.cpp &&
        "$folder/$variant.program" >"$folder/$variant"
    ) &
  done
  wait
  for variant in "${variants[@]}"; do
    diff "$folder/release" "$folder/$variant" || fail "$variant differs from the release build"
  done
  cat $folder/release
}

sanitized() {
  echo "== tests under $1"
  scripts/build.sh "$1"
  ctest --preset "$1" --parallel "$(nproc)"
}
asan() { sanitized asan; }
tsan() { sanitized tsan; }

# clang_tidy [OPTION...] over the library's sources.
clang_tidy() {
  scripts/build.sh release kvtool  # for the list of what is compiled how
  sources 'framework_utility/*.cpp' |
    xargs -P "$(nproc)" -n 4 clang-tidy-14 --quiet -p build/release "$@" >build/clang-tidy.txt 2>&1 || {
    grep -E 'error:|warning:' build/clang-tidy.txt
    fail clang-tidy
  }
}
tidy() {
  echo '== clang-tidy'
  clang_tidy
}
analyze() {
  echo '== the analyzer of clang-tidy'
  clang_tidy --checks='-*,clang-analyzer-*,-clang-analyzer-optin.performance.Padding'
}

scripts/setup.sh check
[ $# -gt 0 ] || set -- lint compilers tidy digest agreement package asan
for part; do "$part"; done
echo 'check: passed'
