#include <framework_utility/platform/graphics/image_reducer.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

namespace FrameworkUtility::detail {
namespace {

using testing::layoutOf;
using testing::reducedImage;
using enum CGImageAlphaInfo;

Data rgbaOf(const CGImage& image) {
  return std::move(*rgbaPixels(image, AlphaForm::premultiplied)).share();
}

TEST(ImageReducerTest, KeepsWhatItCanOfTheLayout) {
  const CGColorSpace rgb = CGColorSpace::createDeviceRGB();
  const CGColorSpace cmyk = CGColorSpace::createDeviceCMYK();
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
        {cmyk, cmyk, layoutOf(8, 6, 4, none), 32, none},
        {p3, p3, layoutOf(8, 6, 4, last), 32, premultipliedLast},
        {gray, rgb, layoutOf(8, 6, 2, premultipliedLast), 32, premultipliedLast},
        {gray, rgb, layoutOf(8, 6, 2, last), 32, premultipliedLast}}) {
    const auto image = CGImage::create(c.layout, c.space, pixels);
    const auto reduced = reducedImage(image.value(), 4);
    ASSERT_TRUE(reduced);
    EXPECT_EQ(reduced->width(), 4U);
    EXPECT_EQ(reduced->height(), 3U);
    EXPECT_EQ(reduced->layout().bitsPerPixel, c.bitsPerPixel);
    EXPECT_EQ(reduced->alphaInfo(), c.alphaInfo);
    EXPECT_EQ(reduced->colorSpace(), c.reducedSpace);
    if (c.space == cmyk) continue;  // inks are averaged, not the light that they leave
    // The same as of the pixels in the plainest layout.
    const auto plain = CGImage::create(layoutOf(8, 6, 4, premultipliedLast), rgb, rgbaOf(*image));
    EXPECT_EQ(rgbaOf(*reduced), reducedImage(*plain, 4)->pixels());
  }
}

}  // namespace
}  // namespace FrameworkUtility::detail
