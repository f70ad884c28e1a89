#include <tools/kvtool/console/console.h>
#include <tools/kvtool/console/json.h>
#include <tools/kvtool/files/output.h>
#include <tools/kvtool/geometry/commands.h>

#include <framework_utility/geometry/math.h>
#include <framework_utility/geometry/rectangle.h>
#include <framework_utility/platform/foundation/values/path.h>

#include <fmt/core.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <span>

namespace kvtool {

using namespace FrameworkUtility;

namespace {

struct Options {
  std::pair<double, double> area;     ///< Width and height of what must be covered, at (0, 0).
  std::pair<double, double> content;  ///< Width and height whose proportions count.
  std::pair<double, double> center;   ///< What the content is turned about.
  double angle = 0;                   ///< In radians.
  bool json = false;
  std::string svg;  ///< Where to draw both; empty for nowhere.
};

Size sizeOf(std::pair<double, double> sides) { return {sides.first, sides.second}; }

/// The cover as a blue pane over the area, which has a red border, as large as both take.
std::string picture(const KvRectangle& area, const KvRectangle& cover, Point center) {
  const Rect a = area.bounds(), c = cover.bounds();
  const double left = std::min(a.minX(), c.minX()), right = std::max(a.maxX(), c.maxX());
  const double top = std::min(a.minY(), c.minY()), bottom = std::max(a.maxY(), c.maxY());
  const double unit = std::max(right - left, bottom - top) / 100;

  std::string svg =
      fmt::format(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="{} {} {} {}" width="640">)"
                  R"(<g font-family="sans-serif" font-size="{}" stroke-width="{}">)",
                  left - 8 * unit, top - 8 * unit, right - left + 16 * unit,
                  bottom - top + 16 * unit, 4 * unit, unit / 2);
  const auto add = [&](const KvRectangle& shape, std::string_view attributes) {
    svg += "\n<polygon points=\"";
    for (const Point p : shape.points()) svg += fmt::format("{},{} ", p.x, p.y);
    svg += fmt::format("\" {}/>", attributes);
  };
  svg += fmt::format(R"(<rect x="{}" y="{}" width="100%" height="100%" fill="#fff"/>)",
                     left - 8 * unit, top - 8 * unit);
  add(cover, R"(fill="#6fb1e0" fill-opacity=".4" stroke="#2b6f9e")");
  add(area, R"(fill="none" stroke="#d6336c")");
  svg += fmt::format("\n<circle cx=\"{}\" cy=\"{}\" r=\"{}\" fill=\"#d6336c\"/>", center.x,
                     center.y, unit);
  for (std::size_t i = 0; i < cover.points().size(); ++i) {
    const Point corner = cover.points()[i];
    svg += fmt::format("\n<text x=\"{}\" y=\"{}\">p{}</text>", corner.x + unit, corner.y - unit,
                       i + 1);
  }
  return svg + "\n</g></svg>\n";
}

Value corner(Point point) { return Value(Array{point.x, point.y}); }

void printRow(std::string_view name, double x, double y) {
  // What rounds to 0 has no sign.
  const auto shown = [](double value) { return std::abs(value) < 0.0005 ? 0 : value; };
  printLine(fmt::format("{:4} {:10.3f} {:10.3f}", name, shown(x), shown(y)));
}

void print(const KvRectangle& cover, double zoom) {
  printRow("p1", cover.p1().x, cover.p1().y);
  printRow("p2", cover.p2().x, cover.p2().y);
  printRow("p3", cover.p3().x, cover.p3().y);
  printRow("p4", cover.p4().x, cover.p4().y);
  printRow("size", cover.size().width, cover.size().height);
  printLine(fmt::format("zoom {:10.3f}", zoom));
}

bool printCover(const Options& options) {
  const KvRectangle area(sizeOf(options.area));
  const Size content = sizeOf(options.content);
  const Point center{options.center.first, options.center.second};
  const KvRectangle cover = area.rectangleFilledWithRectRotated(content, center, options.angle);
  const double zoom =
      cover.size().width / Math::makeSizeWithAspectRatioOutsideSize(content, area.size()).width;
  if (!std::isfinite(zoom)) {
    printProblem("cover", "these numbers have no cover that is a number");
    return false;
  }

  if (options.json) {
    printLine(json(Dictionary{{"p1", corner(cover.p1())},
                              {"p2", corner(cover.p2())},
                              {"p3", corner(cover.p3())},
                              {"p4", corner(cover.p4())}}));
  } else if (!isStandardOutput(options.svg)) {
    print(cover, zoom);
  }
  if (options.svg.empty()) return true;
  const std::string svg = picture(area, cover, center);
  return writeOutput(std::as_bytes(std::span(svg)), options.svg);
}

std::string problemOf(const Options& options) {
  if (options.json && isStandardOutput(options.svg)) {
    return "--json and --svg - both go to standard output";
  }
  const std::string extension = paths::pathExtension(options.svg);
  return extension.empty() || isStandardOutput(options.svg) || extension == "svg"
             ? ""
             : options.svg + " is not a name for SVG";
}

}  // namespace

Command coverCommand() {
  const auto options = std::make_shared<Options>();
  constexpr double anything = -std::numeric_limits<double>::infinity();
  return {
      .name = "cover",
      .purpose = "Find how large a turned picture must be shown to cover a crop area",
      .arguments = {{"--area", numberPair(options->area, 0, "WIDTH,HEIGHT"),
                     "The crop area, at 0,0", true},
                    {"--content", numberPair(options->content, 0, "WIDTH,HEIGHT"),
                     "The picture's proportions", true},
                    {"--center", numberPair(options->center, anything, "X,Y"),
                     "What the picture is turned about", true},
                    {"-a,--angle", finiteNumber(options->angle, "RADIANS"),
                     "By how much, counterclockwise", true},
                    {"-j,--json", flag(options->json),
                     R"({"p1": [x, y], ...}, with digits that read back as the same numbers)"},
                    {"--svg", anyName(options->svg, "FILE"),
                     "Draw both; - is standard output, then without the numbers"}},
      .help =
          R"(Prints the corners of the smallest such picture, clockwise from its top left one, y downwards, then
its size, and its zoom: how many times it is as wide as the smallest upright one. For a whole or half
turn, 0 included, the answer is that upright one at 0,0, whatever the center.

Examples:
  kvtool cover --area 300,200 --content 4032,3024 --center 150,100 --angle 0.12
  kvtool cover --area 3,2 --content 4,3 --center 1.5,1 --angle -0.5 --svg cover.svg
  kvtool cover --json --area 3,2 --content 4,3 --center 1.5,1 --angle 0.5 | jq .p1[0])",
      .check = [options] { return problemOf(*options); },
      .run = [options] { return printCover(*options); }};
}

}  // namespace kvtool
