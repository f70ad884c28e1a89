// An app that wants only geometry.

#include <framework_utility/geometry/math.h>

#include <cstdlib>

using namespace FrameworkUtility;

int main() {
  const Rect fit = Math::makeRectWithAspectRatioInsideRect({4, 3}, Rect(0, 0, 100, 100));
  return fit == Rect(0, 12.5, 100, 75) ? EXIT_SUCCESS : EXIT_FAILURE;
}
