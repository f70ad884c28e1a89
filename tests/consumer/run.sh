#!/bin/sh
# run.sh ON|OFF: installs the library, shared or static, moves it elsewhere, and builds and runs
# small apps and all examples against it, out of reach of the source tree, once found by CMake and
# once by pkg-config.
set -eu
cd "$(dirname "$0")/../.."
fail() { echo "package: $*" >&2; exit 1; }

shared=$1
build=$PWD/build/package
app=$build/app-$shared
prefix=$app/moved/package
rm -rf "$app"
launcher=''
! command -v ccache >/dev/null || launcher=-DCMAKE_CXX_COMPILER_LAUNCHER=ccache

cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DBUILD_SHARED_LIBS="$shared" \
  -DFRAMEWORK_UTILITY_BUILD_TESTS=OFF -DFRAMEWORK_UTILITY_BUILD_TOOLS=OFF \
  -DFRAMEWORK_UTILITY_BUILD_EXAMPLES=OFF -DCMAKE_INSTALL_PREFIX="$app/installed" $launcher >/dev/null
cmake --build "$build"
cmake --install "$build" >/dev/null
mkdir "$app/moved" "$app/by_pkg_config"
mv "$app/installed" "$prefix"

if [ "$shared" = ON ]; then
  inner=$(nm -D --defined-only --format=just-symbols "$prefix/lib/libFrameworkUtility.so" |
    grep -vP '^_Z(Z|GVZ?|T[A-Z]|T[a-z][a-z0-9_]+_|NK?St4hashI)?N[KRO]*16FrameworkUtility(?!6detail)' |
    c++filt || true)
  [ -z "$inner" ] || fail "exported beside the library's own names: $inner"
fi

mkdir "$app/source"
cp -r tests/consumer/*.* examples "$app/source"
configure() {
  cmake -S "$app/source" -B "$app/$1" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" "-DASKED=$2" 2>&1
}
! answer=$(configure unknown 'geometry;imagoio') || fail 'an unknown component is found'
case $(echo "$answer" | tr -s '\n ' ' ') in  # CMake breaks lines
  *'no component "imagoio" but plane,'*', imageio.'*) ;;
  *) fail "an unknown component is answered with $answer" ;;
esac

# run_all FOLDER: the programs there, all that there should be.
run_all() {
  "$1/fits"
  "$1/shows_facts" "$app"
  "$1/demo" "$app" >/dev/null
  "$1/save_photo" "$app/scene.jpg" >/dev/null
  for program in collage straighten touch; do (cd "$app" && "$1/$program" >/dev/null); done
}

configure by_cmake geometry >/dev/null
cmake --build "$app/by_cmake"
run_all "$app/by_cmake/bin"

export PKG_CONFIG_PATH="$prefix/lib/pkgconfig" LD_LIBRARY_PATH="$prefix/lib"
cd "$app/by_pkg_config"
# shellcheck disable=SC2046  # lists of words
for source in ../source/*.cpp ../source/examples/*.cpp ../source/examples/demo; do
  mkdir objects
  program=$(basename "$source" .cpp)
  (
    cd objects
    find "../$source" -name '*.cpp' -exec \
      ${launcher:+ccache} c++ -std=c++20 -O1 -I../../source $(pkg-config --cflags FrameworkUtility) -c {} +
  )
  c++ objects/*.o -o "$program" $(pkg-config --libs FrameworkUtility)
  # Archives by a linker that knows nothing of C++, too.
  [ "$shared" = ON ] ||
    cc objects/*.o -o "$program" $(pkg-config --static --libs FrameworkUtility)
  rm -r objects
done
run_all "$PWD"
