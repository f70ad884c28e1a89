#!/bin/sh
# run.sh ON|OFF: installs the library, shared or static, and builds and runs a small app against
# the installed package, once found by CMake and once by pkg-config.
set -eu
cd "$(dirname "$0")/../.."

shared=$1
build=$PWD/build/package
prefix=$build/installed-$shared
rm -rf "$prefix" "$build/app-$shared"
launcher=''
! command -v ccache >/dev/null || launcher=-DCMAKE_CXX_COMPILER_LAUNCHER=ccache

cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS="$shared" \
  -DFRAMEWORK_UTILITY_BUILD_TESTS=OFF -DFRAMEWORK_UTILITY_BUILD_TOOLS=OFF \
  -DFRAMEWORK_UTILITY_BUILD_EXAMPLES=OFF -DCMAKE_INSTALL_PREFIX="$prefix" $launcher >/dev/null
cmake --build "$build"
cmake --install "$build" >/dev/null

if [ "$shared" = ON ]; then
  inner=$(nm -DC --defined-only "$prefix"/lib/libFrameworkUtility.so | grep -v FrameworkUtility:: |
    grep -v ' A ' || true)
  [ -z "$inner" ] || { echo "exported beside the library's own names: $inner" >&2; exit 1; }
fi

cmake -S tests/consumer -B "$build/app-$shared" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$build/app-$shared"
"$build/app-$shared/fits"
"$build/app-$shared/shows_facts" "$build/app-$shared"

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig"
# shellcheck disable=SC2046  # lists of words
c++ -std=c++20 tests/consumer/fits.cpp -o "$build/app-$shared/fits_by_pkg_config" \
  $(pkg-config --cflags --libs FrameworkUtility)
LD_LIBRARY_PATH="$prefix/lib" "$build/app-$shared/fits_by_pkg_config"
