// collage FILE.svg [PHOTO...]: draws a collage of seven cells, their borders and bisectors as SVG,
// and beside it, as FILE.png, the collage itself: the photos in turn, each cut to its cell.

#include <framework_utility/geometry/collage_shape_side.h>
#include <framework_utility/geometry/math.h>
#include <framework_utility/imageio/image_writer.h>
#include <framework_utility/platform/graphics/ui_graphics_image_renderer.h>
#include <framework_utility/platform/graphics/ui_image_drawing.h>
#include <framework_utility/platform/imageio/ui_image_coding.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

using namespace FrameworkUtility;

namespace {

using Polygon = std::vector<Point>;
constexpr Size size{720, 480};
const Point a{300, 130}, b{450, 110}, c{520, 250}, d{400, 360}, e{250, 290};
const Polygon cells[] = {{{0, 0}, {250, 0}, a, e, {0, 220}},
                         {{250, 0}, {500, 0}, b, a},
                         {{500, 0}, {720, 0}, {720, 270}, c, b},
                         {c, {720, 270}, {720, 480}, {430, 480}, d},
                         {e, d, {430, 480}, {180, 480}},
                         {{0, 220}, e, {180, 480}, {0, 480}},
                         {a, b, c, d, e}};

/// What a border of 12 points leaves of a cell, and the lines that halve its corners.
struct Frame {
  explicit Frame(const Polygon& cell) {
    Point middle;
    for (const Point corner : cell) {
      middle.x += corner.x / static_cast<double>(cell.size());
      middle.y += corner.y / static_cast<double>(cell.size());
    }
    for (std::size_t i = 0; i < cell.size(); ++i) {
      sides.emplace_back(cell[i], cell[(i + 1) % cell.size()]).averagePoint = middle;
      sides.back().calculateBorderWithThickness(12);
    }
    for (std::size_t i = 0; i < sides.size(); ++i) {
      const KvCollageShapeSide& previous = sides[(i + sides.size() - 1) % sides.size()];
      sides[i].calculateBissectrice(previous);
      const auto corner = sides[i].parallele->intersectionPointWithSegment(*previous.parallele);
      inside.push_back(corner.value_or(cell[i]));
    }
  }

  Polygon inside;
  std::vector<KvCollageShapeSide> sides;
};

std::ostream& operator<<(std::ostream& svg, const Polygon& corners) {
  for (const Point corner : corners) svg << corner.x << ',' << corner.y << ' ';
  return svg;
}

void drawSvg(std::ostream& svg) {
  svg << "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 720 480'>\n";
  for (const Polygon& cell : cells) {
    const Frame frame(cell);
    svg << "<polygon points='" << cell << "' fill='#fffdf8' stroke='#c9c4ba'/>\n<polygon points='"
        << frame.inside << "' fill='#8fcbe4'/>\n";
    for (const KvCollageShapeSide& side : frame.sides) {
      svg << "<polyline stroke='#d6336c' stroke-width='1.5' points='"
          << Polygon{side.bissectrice->p1, side.bissectrice->locatePointOnStart(44)} << "'/>\n";
    }
  }
  svg << "</svg>\n" << std::flush;
}

/// Each photo covers the rect about its cell, and the cell cuts it out; without photos, colours.
void drawCollage(CGContext& context, const std::vector<UIImage>& photos) {
  context.setFillColor({{1, 0.99, 0.97, 1}});
  context.fillRect(Rect::rect(size));
  for (std::size_t i = 0; i < std::size(cells); ++i) {
    const Polygon inside = Frame(cells[i]).inside;
    Rect box = Rect::rect(inside[0], inside[1]);
    for (const Point p : inside) {
      box = Rect::rect({std::min(box.minX(), p.x), std::min(box.minY(), p.y)},
                       {std::max(box.maxX(), p.x), std::max(box.maxY(), p.y)});
    }
    context.saveGState();
    context.clipToPolygon(inside);
    if (photos.empty()) {
      context.setFillColor({{0.5, 0.5 + 0.07 * static_cast<double>(i), 0.8, 1}});
      context.fillRect(box);
    } else {
      const UIImage& photo = photos[i % photos.size()];
      const Size shown = Math::makeSizeWithAspectRatioOutsideSize(photo.size(), box.size);
      drawInRect(photo, context,
                 {{box.midX() - shown.width / 2, box.midY() - shown.height / 2}, shown});
    }
    context.restoreGState();
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::string name = argc > 1 ? argv[1] : "collage.svg";
  std::vector<UIImage> photos;
  for (int i = 2; i < argc; ++i) {
    if (const auto photo = imageWithContentsOfFile(argv[i])) photos.push_back(*photo);
  }

  std::ofstream svg(name);
  drawSvg(svg);
  const auto collage = UIGraphicsImageRenderer(size, {.scale = 2, .opaque = true})
                           .imageWithActions([&](CGContext& it) { drawCollage(it, photos); });
  const bool isWritten = svg && collage && writeToPath(*collage, name, {.uti = UTTypePNG});
  if (!isWritten) std::cerr << "collage: the files cannot be written\n";
  return isWritten ? EXIT_SUCCESS : EXIT_FAILURE;
}
