#include <framework_utility/platform/graphics/area_scaler.h>
#include <framework_utility/platform/graphics/image_reducer.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

namespace FrameworkUtility::detail {
namespace {

using testing::layoutOf;
using testing::noise;
using testing::reducedImage;
using enum CGImageAlphaInfo;

Data rgbaOf(const CGImage& image) {
  return std::move(*rgbaPixels(image, AlphaForm::premultiplied)).share();
}

struct Sizes {
  PixelSize size, target;
};

TEST(AreaScalerTest, IsTheAverageOfTheArea) {
  for (const auto& [size, target] :
       {Sizes{{40, 30}, {10, 10}}, Sizes{{40, 30}, {40, 30}}, Sizes{{41, 31}, {40, 30}},
        Sizes{{41, 31}, {7, 5}}, Sizes{{41, 31}, {1, 1}}, Sizes{{1, 31}, {1, 4}},
        Sizes{{41, 1}, {4, 1}}, Sizes{{3, 1500}, {2, 2}}, Sizes{{1500, 3}, {2, 2}},
        Sizes{{97, 89}, {53, 83}}}) {
    for (const std::size_t components : {1U, 3U, 4U}) {
      SCOPED_TRACE(::testing::Message() << size.width << 'x' << size.height << " to "
                                        << target.width << 'x' << target.height);
      auto source = noise(size.width * size.height * components);
      std::fill_n(source.begin(), source.size() / 3, std::uint8_t{255});
      auto scaler = AreaScaler::create(size, target, components);
      ASSERT_TRUE(scaler);
      std::vector<std::uint8_t> row(target.width * components);
      std::size_t rows = 0;
      for (std::size_t y = 0; y < size.height; ++y) {
        if (!scaler->push(&source[y * size.width * components], row.data())) continue;
        for (std::size_t i = 0; i < row.size(); ++i) {
          const double expected = testing::averageShown(
              source, size, components,
              {static_cast<double>(target.width), static_cast<double>(target.height)},
              static_cast<double>(i / components), static_cast<double>(rows), i % components);
          ASSERT_NEAR(row[i], expected, 0.501);
        }
        ++rows;
      }
      EXPECT_EQ(rows, target.height);
    }
  }
}

TEST(AreaScalerTest, RefusesToEnlarge) {
  constexpr std::size_t tooMuch = std::size_t{1} << 40;
  for (const auto& [size, target] : {Sizes{{10, 10}, {11, 10}},
                                     {{10, 10}, {10, 11}},
                                     {{10, 10}, {0, 10}},
                                     {{10, 10}, {10, 0}},
                                     {{10, tooMuch}, {10, 10}},
                                     {{tooMuch, 10}, {10, 10}}}) {
    EXPECT_FALSE(AreaScaler::create(size, target, 4)) << target.width << ' ' << target.height;
  }
}

TEST(AreaScalerTest, BoundsTheLongerSide) {
  struct Case {
    PixelSize size;
    std::size_t bound;
    PixelSize expected;
  };
  for (const Case& c : {Case{{4032, 3024}, 504, {504, 378}},
                        {{3024, 4032}, 500, {375, 500}},
                        {{100, 100}, 100, {100, 100}},
                        {{100, 50}, 4000, {100, 50}},
                        {{1000, 1}, 10, {10, 1}},
                        {{1000, 250}, 10, {10, 3}},  // 2.5 is rounded up
                        {{1000, 1000}, 0, {1, 1}}}) {
    EXPECT_EQ(fittedSize(c.size, c.bound), c.expected) << c.size.width << ' ' << c.size.height;
  }
}

TEST(ImageReducerTest, KeepsWhatItCanOfTheLayout) {
  const CGColorSpace rgb = CGColorSpace::createDeviceRGB();
  const CGColorSpace cmyk = CGColorSpace::createDeviceCMYK();
  const CGColorSpace gray = CGColorSpace::createDeviceGray();
  const CGColorSpace p3 = CGColorSpace::createWithName(kCGColorSpaceDisplayP3).value();
  const Data pixels = testing::dataOf(noise(8 * 6 * 8));
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
