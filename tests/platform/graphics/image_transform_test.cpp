#include <framework_utility/platform/graphics/image_transform.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace FrameworkUtility::detail {
namespace {

using testing::layoutOf;
using enum CGImageAlphaInfo;

TEST(UprightImageTest, MovesEveryPixelWhereItsOrientationSays) {
  constexpr std::size_t w = 37, h = 71;
  for (const CGImage& image : testing::imagesInEveryLayout(w, h)) {
    const auto stored = testing::bytesOf(image.pixels());
    const std::size_t size = image.layout().bitsPerPixel / 8;
    for (const std::size_t orientation : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U}) {
      SCOPED_TRACE(::testing::Message() << size << " bytes, orientation " << orientation);
      // EXIF says where row 0 and column 0 are: 6 has its row 0 at the right and its column 0 at
      // the top.
      const bool isLying = orientation >= 5 && orientation <= 8;
      const bool isMirrored = orientation % 4 == 2 || orientation % 4 == 3;
      const bool isUpsideDown = orientation > 1 && (orientation % 4 == 3 || orientation % 4 == 0);
      const auto upright = uprightImage(image, orientation);
      ASSERT_TRUE(upright);
      ASSERT_EQ(upright->width(), isLying ? h : w);
      ASSERT_EQ(upright->height(), isLying ? w : h);
      EXPECT_EQ(upright->alphaInfo(), image.alphaInfo());
      EXPECT_EQ(upright->colorSpace(), image.colorSpace());
      const auto moved = testing::bytesOf(upright->pixels());
      for (std::size_t y = 0; y < h; ++y) {
        for (std::size_t x = 0; x < w; ++x) {
          const std::size_t right = isLying ? y : x, down = isLying ? x : y;
          const std::size_t toX = isMirrored ? upright->width() - 1 - right : right;
          const std::size_t toY = isUpsideDown ? upright->height() - 1 - down : down;
          ASSERT_TRUE(std::equal(&moved[toY * upright->layout().bytesPerRow + toX * size],
                                 &moved[toY * upright->layout().bytesPerRow + toX * size] + size,
                                 &stored[y * image.layout().bytesPerRow + x * size]));
        }
      }
    }
  }
}

}  // namespace
}  // namespace FrameworkUtility::detail
