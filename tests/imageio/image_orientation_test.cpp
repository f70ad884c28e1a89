#include <framework_utility/imageio/image_orientation.h>

#include <gtest/gtest.h>

#include <limits>

namespace FrameworkUtility {
namespace {

TEST(ImageOrientationTest, EveryOrientationHasItsExifNumber) {
  constexpr std::uint32_t expected[] = {1, 3, 8, 6, 2, 4, 5, 7};
  for (std::int64_t raw = 0; raw < 8; ++raw) {
    EXPECT_EQ(exifOrientationWithImageOrientation(UIImageOrientation{raw}), expected[raw]) << raw;
  }
  for (const std::int64_t raw :
       {std::int64_t{-1}, std::int64_t{8}, std::numeric_limits<std::int64_t>::min()}) {
    EXPECT_EQ(exifOrientationWithImageOrientation(UIImageOrientation{raw}), 0u) << raw;
  }
}

TEST(ImageOrientationTest, FourExchangesTheSidesAndSevenDoesNot) {
  for (std::int64_t orientation = -2; orientation <= 10; ++orientation) {
    const bool exchanged =
        orientation == 4 || orientation == 5 || orientation == 6 || orientation == 8;
    EXPECT_EQ(adjustSizeToExif({40, 30}, orientation), (exchanged ? Size{30, 40} : Size{40, 30}))
        << orientation;
  }
}

}  // namespace
}  // namespace FrameworkUtility
