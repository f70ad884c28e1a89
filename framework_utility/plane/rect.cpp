#include <framework_utility/plane/rect.h>

#include <cmath>

namespace FrameworkUtility {

Rect Rect::rounded() const {
  return {Point{std::round(origin.x), std::round(origin.y)}, Size{width(), height()}.rounded()};
}

}  // namespace FrameworkUtility
