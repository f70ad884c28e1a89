// collage FILE: draws a collage of seven cells, their borders and bisectors as an SVG file.

#include <framework_utility/geometry/collage_shape_side.h>

#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <vector>

using namespace FrameworkUtility;

namespace {

struct Cell {
  std::vector<Point> corners;
  const char* sky;
  const char* land;
};

const Point a{300, 130}, b{450, 110}, c{520, 250}, d{400, 360}, e{250, 290};
const Cell cells[] = {{{{0, 0}, {250, 0}, a, e, {0, 220}}, "#f6b26b", "#8c5a66"},
                      {{{250, 0}, {500, 0}, b, a}, "#8fcbe4", "#3f8f8c"},
                      {{{500, 0}, {720, 0}, {720, 270}, c, b}, "#f2bccb", "#a4638f"},
                      {{c, {720, 270}, {720, 480}, {430, 480}, d}, "#b4d488", "#557f4a"},
                      {{e, d, {430, 480}, {180, 480}}, "#f0d06a", "#b97b3d"},
                      {{{0, 220}, e, {180, 480}, {0, 480}}, "#a9c1ee", "#4c62a5"},
                      {{a, b, c, d, e}, "#ffbf7f", "#d9604f"}};

std::ostream& operator<<(std::ostream& svg, const std::vector<Point>& corners) {
  for (const Point corner : corners) svg << corner.x << ',' << corner.y << ' ';
  return svg;
}

void drawCell(std::ostream& svg, const Cell& cell, std::size_t number) {
  const std::size_t count = cell.corners.size();
  Point middle;
  for (const Point corner : cell.corners) {
    middle.x += corner.x / static_cast<double>(count);
    middle.y += corner.y / static_cast<double>(count);
  }
  std::vector<KvCollageShapeSide> sides;
  for (std::size_t i = 0; i < count; ++i) {
    KvCollageShapeSide& side = sides.emplace_back(cell.corners[i], cell.corners[(i + 1) % count]);
    side.averagePoint = middle;
    side.calculateBorderWithThickness(12);
  }
  std::vector<Point> inner;
  for (std::size_t i = 0; i < count; ++i) {
    const KvCollageShapeSide& previous = sides[(i + count - 1) % count];
    sides[i].calculateBissectrice(previous);
    const auto corner = sides[i].parallele->intersectionPointWithSegment(*previous.parallele);
    inner.push_back(corner.value_or(cell.corners[i]));
  }

  svg << "<clipPath id='c" << number << "'><polygon points='" << inner << "'/></clipPath>\n"
      << "<polygon points='" << cell.corners << "' fill='#fffdf8' stroke='#c9c4ba'/>\n"
      << "<g clip-path='url(#c" << number << ")'><g transform='translate(" << middle.x << ' '
      << middle.y << ")'><rect x='-300' y='-300' width='600' height='600' fill='" << cell.sky
      << "'/><circle cx='24' cy='-22' r='26' fill='#fff6dc'/><g fill='" << cell.land
      << "'><ellipse cx='90' cy='85' rx='160' ry='70' fill-opacity='.6'/>"
      << "<ellipse cx='-70' cy='95' rx='180' ry='90'/></g></g></g>\n";
  for (const KvCollageShapeSide& side : sides)
    svg << "<polyline stroke='#d6336c' stroke-width='1.5' points='"
        << std::vector{side.bissectrice->p1, side.bissectrice->locatePointOnStart(44)} << "'/>\n";
}

}  // namespace

int main(int argc, char** argv) {
  std::ofstream svg(argc == 2 ? argv[1] : "collage.svg");
  svg << "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 720 480'>\n";
  for (std::size_t i = 0; i < std::size(cells); ++i) drawCell(svg, cells[i], i);
  svg << "</svg>\n" << std::flush;
  if (!svg) std::cerr << "collage: the file cannot be written\n";
  return svg ? EXIT_SUCCESS : EXIT_FAILURE;
}
