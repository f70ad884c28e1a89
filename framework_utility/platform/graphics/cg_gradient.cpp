#include <framework_utility/platform/graphics/cg_gradient.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace FrameworkUtility {

CGGradient::CGGradient(std::shared_ptr<const std::vector<Stop>> stops) : stops_(std::move(stops)) {}

std::optional<CGGradient> CGGradient::createWithColors(const std::vector<CGColor>& colors,
                                                       const std::vector<double>& locations) {
  if (colors.empty() || colors.size() != locations.size()) return std::nullopt;
  std::vector<Stop> stops;
  stops.reserve(colors.size());
  for (std::size_t i = 0; i < colors.size(); ++i) {
    Stop stop{locations[i], colors[i].components};
    if (!std::isfinite(stop.location)) return std::nullopt;
    for (double* component :
         {&stop.color.red, &stop.color.green, &stop.color.blue, &stop.color.alpha}) {
      if (!std::isfinite(*component)) return std::nullopt;
      *component = std::clamp(*component, 0.0, 1.0);
    }
    stops.push_back(stop);
  }
  std::stable_sort(stops.begin(), stops.end(),
                   [](const Stop& a, const Stop& b) { return a.location < b.location; });
  return CGGradient(std::make_shared<const std::vector<Stop>>(std::move(stops)));
}

bool CGGradient::isOpaque() const {
  return std::all_of(stops_->begin(), stops_->end(),
                     [](const Stop& stop) { return stop.color.alpha == 1; });
}

}  // namespace FrameworkUtility
