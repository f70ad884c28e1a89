#pragma once

#include <framework_utility/plane/point.h>
#include <framework_utility/plane/size.h>

#include <cstdint>
#include <random>

namespace FrameworkUtility::testing {

/// The same numbers in each run and everywhere: the generator is laid down bit by bit, the
/// distributions of the standard library are not.
class Numbers {
 public:
  double between(double low, double high) {
    return low + static_cast<double>(bits_() >> 11) * 0x1p-53 * (high - low);
  }
  /// 0 to `end` - 1.
  int below(int end) { return static_cast<int>(bits_() % static_cast<std::uint64_t>(end)); }
  Point point() { return {between(-2000, 2000), between(-2000, 2000)}; }
  /// Straight above or below `other` in every fourth case.
  Point pointBeside(Point other) {
    const Point p = point();
    return below(4) == 0 ? Point{other.x, p.y} : p;
  }
  Size size() { return {between(0.01, 2000), between(0.01, 2000)}; }

 private:
  std::mt19937_64 bits_{20240517};
};

}  // namespace FrameworkUtility::testing
