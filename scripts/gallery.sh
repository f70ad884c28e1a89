#!/bin/sh
# gallery.sh: draws the pictures of docs/gallery.md, one of each kind of gradient, and the collage of
# docs/geometry.md anew.
set -eu
cd "$(dirname "$0")/.."

scripts/setup.sh build
scripts/build.sh release collage kvtool
draw() {
  name=$1
  shift
  build/release/bin/kvtool gradient --out "docs/images/gradient-$name.png" "$@"
}

draw linear --kind linear --colors '#2B1055,#D53369,#FFB75E,#FFF3B0' --size 480x160 --vertical
draw radial --kind radial --colors '#FFF8DC,#FFC857,#E9724C,#481D24' --size 180x180
draw conical --kind conical --size 180x180 \
  --colors '#FF0000,#FF9900,#E6FF00,#00CC1A,#00E6E6,#0033FF,#8000FF,#FF0099'
draw hue --kind hue --size 480x40
draw lightness --kind lightness --size 480x40
draw selective --kind selective --colors '#00C040' --size 480x40

build/release/bin/collage docs/images/collage.svg docs/images/scene.jpg
build/release/bin/kvtool thumbnail docs/images/collage.png --size 720 --out docs/images/collage.jpg
rm docs/images/collage.png
