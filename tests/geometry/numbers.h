#pragma once

#include <framework_utility/plane/point.h>
#include <framework_utility/plane/size.h>

#include <random>

namespace FrameworkUtility::testing {

/// The same numbers in each run.
class Numbers {
 public:
  double between(double low, double high) {
    return std::uniform_real_distribution(low, high)(bits_);
  }
  int whole(int low, int high) { return std::uniform_int_distribution(low, high)(bits_); }
  Point point() { return {between(-2000, 2000), between(-2000, 2000)}; }
  Size size() { return {between(0.01, 2000), between(0.01, 2000)}; }

 private:
  std::mt19937_64 bits_{20240517};
};

}  // namespace FrameworkUtility::testing
