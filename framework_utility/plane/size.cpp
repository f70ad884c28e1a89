#include <framework_utility/plane/size.h>

#include <cmath>

namespace FrameworkUtility {

Size Size::rounded() const { return {std::round(width), std::round(height)}; }

Size Size::ceiled() const { return {std::ceil(width), std::ceil(height)}; }

Size Size::floored() const { return {std::floor(width), std::floor(height)}; }

double Size::diagonalLenght() const {
  const Point corner = center();
  return std::sqrt(corner.x * corner.x + corner.y * corner.y);
}

}  // namespace FrameworkUtility
