// What the plane's values print as: the platform's texts of them, so that what a log shows can be
// read back by CGPointFromString and the like.

#include <framework_utility/plane/affine_transform.h>
#include <framework_utility/plane/edge_insets.h>
#include <framework_utility/plane/number_list.h>
#include <framework_utility/plane/point.h>
#include <framework_utility/plane/rect.h>
#include <framework_utility/plane/size.h>

#include <ostream>

namespace FrameworkUtility {

using detail::numberList;

std::ostream& operator<<(std::ostream& out, Point point) {
  return out << '{' + numberList({point.x, point.y}) + '}';
}

std::ostream& operator<<(std::ostream& out, Size size) {
  return out << '{' + numberList({size.width, size.height}) + '}';
}

std::ostream& operator<<(std::ostream& out, const Rect& rect) {
  return out << "{{" + numberList({rect.origin.x, rect.origin.y}) + "}, {" +
                    numberList({rect.size.width, rect.size.height}) + "}}";
}

std::ostream& operator<<(std::ostream& out, const EdgeInsets& insets) {
  return out << '{' + numberList({insets.top, insets.left, insets.bottom, insets.right}) + '}';
}

std::ostream& operator<<(std::ostream& out, const AffineTransform& t) {
  return out << '[' + numberList({t.a, t.b, t.c, t.d, t.tx, t.ty}) + ']';
}

}  // namespace FrameworkUtility
