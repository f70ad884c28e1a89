#include <framework_utility/plane/affine_transform.h>

#include <cmath>

namespace FrameworkUtility {

double AffineTransform::angle() const { return std::atan2(b, a); }

double AffineTransform::scaleX() const { return std::sqrt(a * a + c * c); }

double AffineTransform::scaleY() const { return std::sqrt(b * b + d * d); }

}  // namespace FrameworkUtility
