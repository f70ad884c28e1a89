// straighten FILE: draws how a turned photo covers its crop area at a dozen angles, as an SVG file.

#include <framework_utility/geometry/math.h>
#include <framework_utility/geometry/rectangle.h>

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iostream>

using namespace FrameworkUtility;

namespace {

constexpr Size photo{400, 300};
constexpr Size crop{108, 72};
constexpr double degrees[] = {-45, -30, -20, -12, -6, -2, 2, 6, 12, 20, 30, 45};

// The photo, to be placed often: sky, sun, mountains, a lake; and the crop area.
constexpr auto head =
    R"(<svg xmlns='http://www.w3.org/2000/svg' viewBox='-8 -8 856 644'
 font-family='sans-serif' font-size='14' fill='#fff' text-anchor='middle'>
<linearGradient id='sky' x2='0' y2='1'><stop stop-color='#5fa6dc'/>
 <stop offset='.65' stop-color='#fde2c0'/></linearGradient>
<clipPath id='frame'><rect width='400' height='300'/></clipPath>
<clipPath id='crop'><rect width='108' height='72'/></clipPath>
<defs><g id='photo' clip-path='url(#frame)'><rect width='400' height='300' fill='url(#sky)'/>
 <circle cx='265' cy='75' r='28' fill='#fff3cf'/>
 <path d='M0,165 105,105 165,145 245,85 400,180V190H0Z' fill='#7d8fa8'/>
 <path d='M0,180 70,150 160,180 270,145 400,185V190H0Z' fill='#4f7a5c'/>
 <rect y='185' width='400' height='115' fill='#3f86a8'/>
 <path d='M60,212H190M190,235H340M60,262H200' stroke='#8cc3d8' stroke-width='5'/></g></defs>
<rect x='-8' y='-8' width='856' height='644' fill='#22252a'/>
)";

void draw(std::ostream& svg, double angle) {
  const KvRectangle cover =
      KvRectangle(crop).rectangleFilledWithRectRotated(photo, crop.center(), angle);
  const Size upright = Math::makeSizeWithAspectRatioOutsideSize(photo, crop);
  const Point p1 = cover.p1(), p2 = cover.p2(), p4 = cover.p4();
  for (const char* how : {"opacity='.3'", "clip-path='url(#crop)'"}) {
    svg << "<g " << how << "><use href='#photo' transform='matrix("  // onto the cover's corners
        << (p2.x - p1.x) / photo.width << ' ' << (p2.y - p1.y) / photo.width << ' '
        << (p4.x - p1.x) / photo.height << ' ' << (p4.y - p1.y) / photo.height << ' ' << p1.x << ' '
        << p1.y << ")'/></g>\n";
  }
  svg << "<rect width='" << crop.width << "' height='" << crop.height
      << "' fill='none' stroke='#fff' stroke-width='2'/>\n<text x='54' y='93'>"
      << std::lround(Math::radiansToDegrees(angle)) << "° · "
      << std::lround(cover.size().width / upright.width * 100) << " %</text>\n";
}

}  // namespace

int main(int argc, char** argv) {
  std::ofstream svg(argc == 2 ? argv[1] : "straighten.svg");
  svg << head;
  int number = 0;
  for (const double angle : degrees) {
    svg << "<g transform='translate(" << number % 4 * 210 + 51 << ' ' << number / 4 * 212 + 70
        << ")'>\n";
    draw(svg, Math::degreesToRadians(angle));
    svg << "</g>\n";
    ++number;
  }
  svg << "</svg>\n" << std::flush;
  if (!svg) std::cerr << "straighten: the file cannot be written\n";
  return svg ? EXIT_SUCCESS : EXIT_FAILURE;
}
