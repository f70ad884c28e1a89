#include <framework_utility/color/gradient.h>

#include <framework_utility/color/even_locations.h>
#include <framework_utility/platform/foundation/values/random.h>
#include <framework_utility/platform/foundation/values/stop.h>

#include <cmath>
#include <limits>
#include <utility>

namespace FrameworkUtility {

namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

[[noreturn]] void stopAtUnknownType() { stop("KvGradient: the type is neither linear nor radial"); }

std::vector<double> evenLocationsFor(const std::vector<KvColor>& colors) {
  if (colors.empty()) stop("KvGradient: there are no colours to space evenly");
  return detail::evenLocations(colors.size());
}

double distance(Point a, Point b) { return std::hypot(b.x - a.x, b.y - a.y); }

Point scaled(Point point, Size size) { return {point.x * size.width, point.y * size.height}; }

bool areClose(Point a, Point b) {
  return std::abs(a.x - b.x) <= epsilon && std::abs(a.y - b.y) <= epsilon;
}

}  // namespace

template <>
std::optional<KvGradientType> fromRawValue<KvGradientType>(std::int64_t rawValue) {
  if (rawValue != 0 && rawValue != 1) return std::nullopt;
  return static_cast<KvGradientType>(rawValue);
}

bool isLinear(KvGradientType type) { return type == KvGradientType::linear; }

bool isRadial(KvGradientType type) { return type == KvGradientType::radial; }

KvGradientType randomGradientType() {
  return static_cast<KvGradientType>(randomUnsignedInteger() & 1);
}

KvGradient::KvGradient(KvGradientType ownType, std::vector<KvColor> stopColors,
                       std::vector<double> locations, Point start, Point end)
    : type(ownType),
      colors(std::move(stopColors)),
      startPointNormalized(start),
      endPointNormalized(end),
      locations_(std::move(locations)) {}

KvGradient::KvGradient(std::vector<KvColor> stopColors, std::vector<double> locations,
                       GradientDirection direction)
    : KvGradient(KvGradientType::linear, std::move(stopColors), std::move(locations), {0, 0},
                 direction == GradientDirection::vertical ? Point{0, 1} : Point{1, 0}) {}

KvGradient::KvGradient(const std::vector<KvColor>& stopColors, GradientDirection direction)
    : KvGradient(stopColors, evenLocationsFor(stopColors), direction) {}

KvGradient KvGradient::random() {
  const std::uint32_t last = randomUnsignedInteger() % 5 + 1;
  std::vector<KvColor> colors;
  std::vector<double> locations;
  for (std::uint32_t i = 0; i <= last; ++i) {
    colors.push_back(KvColor::random());
    locations.push_back(static_cast<double>(i) / last);
  }
  const auto randomPoint = [] { return Point{randomUnitReal(), randomUnitReal()}; };
  return {randomGradientType(), std::move(colors), std::move(locations), randomPoint(),
          randomPoint()};
}

std::string_view KvGradient::caType() const {
  switch (type) {
    case KvGradientType::linear:
      return kCAGradientLayerAxial;
    case KvGradientType::radial:
      return kCAGradientLayerRadial;
  }
  stopAtUnknownType();
}

std::optional<CGGradient> KvGradient::cgGradient() const {
  return CGGradient::createWithColors(KvColor::cgColors(colors), locations_);
}

void KvGradient::drawInContex(CGContext& context, Size size) const {
  const std::optional<CGGradient> gradient = cgGradient();
  if (!gradient || !(size.width > epsilon) || !(size.height > epsilon)) return;
  const Point start = scaled(startPointNormalized, size);
  const Point end = scaled(endPointNormalized, size);
  switch (type) {
    case KvGradientType::linear:
      context.drawLinearGradient(*gradient, start, end);
      return;
    case KvGradientType::radial:
      context.drawRadialGradient(*gradient, start, distance(start, end));
      return;
  }
  stopAtUnknownType();
}

void KvGradient::configureGradientLayer(CAGradientLayer& layer) const {
  const double d = distance(startPointNormalized, endPointNormalized);
  layer.type = caType();
  layer.startPoint = startPointNormalized;
  layer.endPoint = {startPointNormalized.x + d, startPointNormalized.y + d};
  layer.locations = locations_;
  layer.colors = KvColor::cgColors(colors);
}

bool operator==(const KvGradient& a, const KvGradient& b) {
  return a.type == b.type && a.colors == b.colors && a.locations_ == b.locations_ &&
         areClose(a.startPointNormalized, b.startPointNormalized) &&
         areClose(a.endPointNormalized, b.endPointNormalized);
}

}  // namespace FrameworkUtility
