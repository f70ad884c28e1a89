#include <framework_utility/platform/graphics/image_transform.h>

#include <framework_utility/platform/graphics/rgba_rows.h>
#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace FrameworkUtility::detail {
namespace {

using testing::layoutOf;
using enum CGImageAlphaInfo;

Data rgbaOf(const CGImage& image) {
  return std::move(*rgbaPixels(image, AlphaForm::premultiplied)).share();
}

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

TEST(ReducedImageTest, AveragesPremultipliedColours) {
  // An opaque red pixel beside transparent ones that would be green: none of the green shows.
  const std::vector<std::uint8_t> pixels{255, 0, 0, 255, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0};
  const auto image = CGImage::create(layoutOf(2, 2, 4, last), CGColorSpace::createDeviceRGB(),
                                     testing::dataOf(pixels));
  const auto reduced = reducedImage(image.value(), 1);
  ASSERT_TRUE(reduced);
  EXPECT_EQ(testing::pixelAt(*reduced, 0, 0), (testing::Pixel{64, 0, 0, 64}));
}

TEST(ReducedImageTest, KeepsWhatItCanOfTheLayout) {
  const CGColorSpace rgb = CGColorSpace::createDeviceRGB();
  const CGColorSpace gray = CGColorSpace::createDeviceGray();
  const CGColorSpace p3 = CGColorSpace::createWithName(kCGColorSpaceDisplayP3).value();
  const Data pixels = testing::dataOf(testing::noise(8 * 6 * 8));
  struct Case {
    CGColorSpace space, reducedSpace;
    CGImageLayout layout;
    std::size_t bitsPerPixel;
    CGImageAlphaInfo alphaInfo;
  };
  for (const Case& c :
       {Case{gray, gray, layoutOf(8, 6, 1, none), 8, none},
        {p3, p3, layoutOf(8, 6, 3, none), 32, noneSkipLast},
        {p3, p3, layoutOf(8, 6, 4, noneSkipLast), 32, noneSkipLast},
        {p3, p3, layoutOf(8, 6, 4, premultipliedLast), 32, premultipliedLast},
        {p3, p3, layoutOf(8, 6, 4, noneSkipFirst, 16), 32, noneSkipLast},
        {p3, p3, layoutOf(8, 6, 4, premultipliedFirst, 8, CGImageByteOrder::little32), 32,
         premultipliedLast},
        {gray, rgb, layoutOf(8, 6, 1, alphaOnly), 32, premultipliedLast},
        {CGColorSpace::createDeviceCMYK(), rgb, layoutOf(8, 6, 4, none), 32, noneSkipLast},
        {gray, rgb, layoutOf(8, 6, 2, last), 32, premultipliedLast}}) {
    const auto image = CGImage::create(c.layout, c.space, pixels);
    EXPECT_EQ(reducedImage(image.value(), 8)->pixels().data(), pixels.data());
    const auto reduced = reducedImage(image.value(), 4);
    ASSERT_TRUE(reduced);
    EXPECT_EQ(reduced->width(), 4U);
    EXPECT_EQ(reduced->height(), 3U);
    EXPECT_EQ(reduced->layout().bitsPerPixel, c.bitsPerPixel);
    EXPECT_EQ(reduced->alphaInfo(), c.alphaInfo);
    EXPECT_EQ(reduced->colorSpace(), c.reducedSpace);
    // The same as of the pixels in the plainest layout.
    const auto plain = CGImage::create(layoutOf(8, 6, 4, premultipliedLast), rgb, rgbaOf(*image));
    EXPECT_EQ(rgbaOf(*reduced), reducedImage(*plain, 4)->pixels());
  }
}

}  // namespace
}  // namespace FrameworkUtility::detail
