#include <framework_utility/platform/graphics/drawn_rows.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <random>
#include <vector>

namespace FrameworkUtility {
namespace {

using detail::AlphaForm;
using detail::DrawnRows;
using detail::PixelSize;
using testing::dataOf;
using testing::layoutOf;
using testing::noise;
using enum CGImageAlphaInfo;

CGImage imageOf(const CGImageLayout& layout, const std::vector<std::uint8_t>& bytes) {
  return *CGImage::create(layout, CGColorSpace::createDeviceRGB(), dataOf(bytes));
}

/// One pixel a letter, top row first: red, green, blue, black, and blank for none.
CGImage pictureOf(const std::vector<std::string>& rows) {
  std::vector<std::uint8_t> bytes;
  for (const std::string& row : rows) {
    for (const char pixel : row) {
      for (const bool part : {pixel == 'r', pixel == 'g', pixel == 'b', pixel != ' '}) {
        bytes.push_back(part ? 255 : 0);
      }
    }
  }
  return imageOf(layoutOf(rows[0].size(), rows.size(), 4, premultipliedLast), bytes);
}

/// All rows, fourth bytes that say nothing as 255.
std::vector<std::uint8_t> drawn(const CGImage& image, PixelSize bitmap, Size area) {
  auto rows = DrawnRows::create(image, bitmap, area);
  std::vector<std::uint8_t> bytes;
  for (std::size_t y = 0; rows && y < bitmap.height; ++y) {
    const auto [pixels, isOpaque] = rows->row(y);
    bytes.insert(bytes.end(), pixels, pixels + bitmap.width * 4);
    for (std::size_t x = 0; isOpaque && x < bitmap.width; ++x) {
      bytes[(y * bitmap.width + x) * 4 + 3] = 255;
    }
  }
  return bytes;
}

/// How much of the pixel from `begin` to `begin` + 1 lies in row or column `i` of `count` that are
/// spread over `length`.
double overlap(double begin, std::size_t i, std::size_t count, double length) {
  const double step = length / static_cast<double>(count);
  const double from = static_cast<double>(i) * step;
  return std::max(std::min(begin + 1, from + step) - std::max(begin, from), 0.0);
}

TEST(DrawnRowsTest, APictureOfTheBitmapsSizeStaysAsItIs) {
  constexpr std::size_t width = 37;
  constexpr std::size_t height = 5;
  for (const CGImageAlphaInfo info :
       {none, premultipliedLast, premultipliedFirst, last, first, noneSkipLast, noneSkipFirst}) {
    for (const std::size_t bits : {8U, 16U}) {
      for (const CGImageByteOrder order :
           {CGImageByteOrder::unspecified, CGImageByteOrder::little32, CGImageByteOrder::big32}) {
        CGImageLayout layout = layoutOf(width, height, info == none ? 3 : 4, info, bits, order);
        layout.bytesPerRow += 3;
        const auto image = CGImage::create(layout, CGColorSpace::createDeviceRGB(),
                                           dataOf(noise(layout.bytesPerRow * height)));
        if (!image) continue;  // an order that the layout cannot have
        const auto expected = detail::rgbaPixels(*image, AlphaForm::premultiplied);
        ASSERT_TRUE(expected);
        EXPECT_EQ(drawn(*image, {width, height}, {width, height}),
                  std::vector(expected->data(), expected->data() + expected->size()))
            << static_cast<int>(info) << ' ' << bits;
      }
    }
  }
}

TEST(DrawnRowsTest, EachPixelIsTheAverageOfWhatItShows) {
  std::mt19937 random(20240517);
  const auto between = [&random](std::size_t low, std::size_t high) {
    return std::uniform_int_distribution(low, high)(random);
  };
  for (int i = 0; i < 200; ++i) {
    const std::size_t width = between(1, 24);
    const std::size_t height = between(1, 24);
    const PixelSize bitmap{between(1, 24), between(1, 24)};
    const Size area{1 + static_cast<double>(between(0, 120)) / 4,
                    1 + static_cast<double>(between(0, 120)) / 4};
    SCOPED_TRACE(::testing::Message()
                 << width << 'x' << height << " as " << area.width << 'x' << area.height << " in "
                 << bitmap.width << 'x' << bitmap.height);
    const auto bytes = noise(width * height * 4, static_cast<std::uint32_t>(i));
    const auto found =
        drawn(imageOf(layoutOf(width, height, 4, premultipliedLast), bytes), bitmap, area);
    ASSERT_EQ(found.size(), bitmap.width * bitmap.height * 4);
    for (std::size_t y = 0; y < bitmap.height; ++y) {
      for (std::size_t x = 0; x < bitmap.width; ++x) {
        std::array<double, 4> expected{};
        // The area's lower left corner is the bitmap's.
        const double top =
            static_cast<double>(y) + area.height - static_cast<double>(bitmap.height);
        for (std::size_t sy = 0; sy < height; ++sy) {
          for (std::size_t sx = 0; sx < width; ++sx) {
            for (std::size_t c = 0; c < 4; ++c) {
              expected[c] += overlap(top, sy, height, area.height) *
                             overlap(static_cast<double>(x), sx, width, area.width) *
                             bytes[(sy * width + sx) * 4 + c];
            }
          }
        }
        for (std::size_t c = 0; c < 4; ++c) {
          ASSERT_NEAR(found[(y * bitmap.width + x) * 4 + c], expected[c], 0.5 + 1e-9)
              << x << ", " << y;
        }
      }
    }
  }
}

TEST(DrawnRowsTest, TheLowerLeftPartIsSeen) {
  const CGImage picture = pictureOf({"rg", "bk"});
  const auto black = drawn(pictureOf({"bb"}), {2, 1}, {2, 1});
  EXPECT_EQ(drawn(picture, {2, 1}, {4, 4}), black) << "enlarged";
  EXPECT_EQ(drawn(picture, {4, 1}, {2, 2}), drawn(pictureOf({"bk  "}), {4, 1}, {4, 1}));
  EXPECT_EQ(drawn(picture, {2, 3}, {2, 2}), drawn(pictureOf({"  ", "rg", "bk"}), {2, 3}, {2, 3}))
      << "nothing above a picture that is lower than the bitmap";
}

TEST(DrawnRowsTest, RowsComeInAnyOrder) {
  const CGImage image = imageOf(layoutOf(9, 20, 4, last), noise(9 * 20 * 4));
  auto downwards = DrawnRows::create(image, {5, 7}, {5, 7});
  auto upwards = DrawnRows::create(image, {5, 7}, {5, 7});
  std::vector<std::vector<std::uint8_t>> rows;
  for (std::size_t y = 0; y < 7; ++y) {
    rows.emplace_back(downwards->row(y).pixels, downwards->row(y).pixels + 20);
  }
  for (std::size_t y = 7; y-- > 0;) {
    const std::uint8_t* pixels = upwards->row(y).pixels;
    EXPECT_EQ(std::vector(pixels, pixels + 20), rows[y]) << y;
  }
}

TEST(DrawnRowsTest, AnythingElseHasNoRows) {
  const CGImage image = pictureOf({"rg", "bk"});
  EXPECT_TRUE(DrawnRows::create(image, {2, 2}, {1, 1}));
  EXPECT_FALSE(DrawnRows::create(image, {0, 2}, {2, 2}));
  EXPECT_FALSE(DrawnRows::create(image, {2, 0}, {2, 2}));
  EXPECT_FALSE(DrawnRows::create(image, {2, 2}, {0.99, 2}));
  EXPECT_FALSE(DrawnRows::create(image, {2, 2}, {2, std::nan("")}));
  EXPECT_FALSE(DrawnRows::create(image, {std::size_t{1} << 40, 1}, {1e12, 1}))
      << "more than memory may take";
  const auto alone = [](const CGColorSpace& space, std::size_t components, CGImageAlphaInfo info) {
    return *CGImage::create(layoutOf(2, 2, components, info), space, dataOf(noise(16)));
  };
  for (const CGImage& other : {alone(CGColorSpace::createDeviceGray(), 1, none),
                               alone(CGColorSpace::createDeviceGray(), 2, premultipliedLast),
                               alone(CGColorSpace::createDeviceCMYK(), 4, none),
                               alone(CGColorSpace::createDeviceRGB(), 1, alphaOnly)}) {
    EXPECT_FALSE(DrawnRows::create(other, {2, 2}, {2, 2}));
  }
}

}  // namespace
}  // namespace FrameworkUtility
