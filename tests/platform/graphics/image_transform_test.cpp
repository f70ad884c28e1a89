#include <framework_utility/platform/graphics/image_transform.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace FrameworkUtility {
namespace {

using detail::reducedImage;
using detail::uprightImage;
using testing::bytesOf;
using testing::dataOf;
using testing::layoutOf;
using enum CGImageAlphaInfo;

TEST(UprightImageTest, MovesEveryPixelWhereItsOrientationSays) {
  // Where the stored pixel (x, y) of a picture of w by h stands in the upright one, from where EXIF
  // says that row 0 and column 0 are: 6 has its row 0 at the right and its column 0 at the top.
  struct Place {
    std::size_t x, y;
  };
  const auto placeOf = [](std::size_t orientation, std::size_t x, std::size_t y, std::size_t w,
                          std::size_t h) -> Place {
    switch (orientation) {
      case 2:
        return {w - 1 - x, y};
      case 3:
        return {w - 1 - x, h - 1 - y};
      case 4:
        return {x, h - 1 - y};
      case 5:
        return {y, x};
      case 6:
        return {h - 1 - y, x};
      case 7:
        return {h - 1 - y, w - 1 - x};
      case 8:
        return {y, w - 1 - x};
      default:
        return {x, y};
    }
  };
  struct Layout {
    CGColorSpace space;
    CGImageLayout layout;
  };
  const CGColorSpace gray = CGColorSpace::createDeviceGray();
  const CGColorSpace rgb = CGColorSpace::createDeviceRGB();
  constexpr std::size_t w = 37;
  constexpr std::size_t h = 21;
  for (Layout c : {Layout{gray, layoutOf(w, h, 1, none)},
                   {gray, layoutOf(w, h, 2, last)},
                   {gray, layoutOf(w, h, 1, alphaOnly)},
                   {rgb, layoutOf(w, h, 3, none)},
                   {rgb, layoutOf(w, h, 4, first)},
                   {rgb, layoutOf(w, h, 3, none, 16)},
                   {rgb, layoutOf(w, h, 4, last, 16)}}) {
    c.layout.bytesPerRow += 3;
    const auto bytes = testing::noise(c.layout.bytesPerRow * h);
    const auto image = CGImage::create(c.layout, c.space, dataOf(bytes));
    ASSERT_TRUE(image);
    const std::size_t size = c.layout.bitsPerPixel / 8;
    for (std::size_t orientation = 0; orientation <= 9; ++orientation) {
      SCOPED_TRACE(::testing::Message() << size << " bytes, orientation " << orientation);
      const auto upright = uprightImage(*image, orientation);
      ASSERT_TRUE(upright);
      const bool lying = orientation >= 5 && orientation <= 8;
      ASSERT_EQ(upright->width(), lying ? h : w);
      ASSERT_EQ(upright->height(), lying ? w : h);
      EXPECT_EQ(upright->alphaInfo(), c.layout.alphaInfo);
      EXPECT_EQ(upright->colorSpace(), image->colorSpace());
      const auto moved = bytesOf(upright->pixels());
      for (std::size_t y = 0; y < h; ++y) {
        for (std::size_t x = 0; x < w; ++x) {
          const Place place = placeOf(orientation, x, y, w, h);
          ASSERT_TRUE(std::equal(&bytes[y * c.layout.bytesPerRow + x * size],
                                 &bytes[y * c.layout.bytesPerRow + x * size] + size,
                                 &moved[place.y * upright->layout().bytesPerRow + place.x * size]));
        }
      }
    }
  }
}

TEST(ReducedImageTest, AveragesPremultipliedColours) {
  // An opaque red pixel beside transparent ones that would be green: none of the green shows.
  const std::vector<std::uint8_t> pixels{255, 0, 0, 255, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 0, 0};
  const auto image =
      CGImage::create(layoutOf(2, 2, 4, last), CGColorSpace::createDeviceRGB(), dataOf(pixels));
  const auto reduced = reducedImage(image.value(), 1);
  ASSERT_TRUE(reduced);
  EXPECT_EQ(reduced->alphaInfo(), premultipliedLast);
  EXPECT_EQ(bytesOf(reduced->pixels()), (std::vector<std::uint8_t>{64, 0, 0, 64}));
}

TEST(ReducedImageTest, KeepsWhatItCanOfTheLayout) {
  const CGColorSpace gray = CGColorSpace::createDeviceGray();
  const CGColorSpace p3 = CGColorSpace::createWithName(kCGColorSpaceDisplayP3).value();
  const Data pixels = dataOf(testing::noise(8 * 6 * 8));
  const auto same = CGImage::create(layoutOf(8, 6, 1, none), gray, pixels);
  EXPECT_EQ(reducedImage(same.value(), 8)->pixels().data(), pixels.data());

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
        {gray, CGColorSpace::createDeviceRGB(), layoutOf(8, 6, 2, last), 32, premultipliedLast}}) {
    const auto image = CGImage::create(c.layout, c.space, pixels);
    const auto reduced = reducedImage(image.value(), 4);
    ASSERT_TRUE(reduced);
    EXPECT_EQ(reduced->width(), 4U);
    EXPECT_EQ(reduced->height(), 3U);
    EXPECT_EQ(reduced->layout().bitsPerPixel, c.bitsPerPixel);
    EXPECT_EQ(reduced->alphaInfo(), c.alphaInfo);
    EXPECT_EQ(reduced->colorSpace(), c.reducedSpace);
  }
}

}  // namespace
}  // namespace FrameworkUtility
