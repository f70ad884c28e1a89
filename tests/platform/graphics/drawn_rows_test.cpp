#include <framework_utility/platform/graphics/drawn_rows.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <random>
#include <vector>

namespace FrameworkUtility::detail {
namespace {

using testing::layoutOf;
using testing::noise;
using enum CGImageAlphaInfo;

CGImage imageOf(std::size_t width, std::size_t height, const std::vector<std::uint8_t>& bytes) {
  return *CGImage::create(layoutOf(width, height, 4, premultipliedLast),
                          CGColorSpace::createDeviceRGB(), testing::dataOf(bytes));
}

/// All rows, fourth bytes that say nothing as 255; from the last to the first where asked to.
std::vector<std::uint8_t> drawn(const CGImage& image, PixelSize bitmap, Size area,
                                bool isUpwards = false) {
  auto rows = DrawnRows::create(image, bitmap, area);
  std::vector<std::uint8_t> bytes(rows ? bitmap.width * bitmap.height * 4 : 0);
  for (std::size_t i = 0; rows && i < bitmap.height; ++i) {
    const std::size_t y = isUpwards ? bitmap.height - 1 - i : i;
    const auto [pixels, isOpaque] = rows->row(y);
    std::uint8_t* const row = &bytes[y * bitmap.width * 4];
    std::copy_n(pixels, bitmap.width * 4, row);
    for (std::size_t x = 0; isOpaque && x < bitmap.width; ++x) row[4 * x + 3] = 255;
  }
  return bytes;
}

TEST(DrawnRowsTest, EachPixelIsTheAverageOfWhatItShows) {
  std::mt19937 random(20240517);
  const auto between = [&random](std::size_t low, std::size_t high) {
    return std::uniform_int_distribution(low, high)(random);
  };
  for (std::uint32_t i = 0; i < 200; ++i) {
    const PixelSize size{between(1, 24), between(1, 24)}, bitmap{between(1, 24), between(1, 24)};
    const Size area{1 + static_cast<double>(between(0, 120)) / 4,
                    1 + static_cast<double>(between(0, 120)) / 4};
    SCOPED_TRACE(::testing::Message()
                 << size.width << 'x' << size.height << " as " << area.width << 'x' << area.height
                 << " in " << bitmap.width << 'x' << bitmap.height);
    const auto bytes = noise(size.width * size.height * 4, i);
    const CGImage image = imageOf(size.width, size.height, bytes);
    const auto found = drawn(image, bitmap, area);
    EXPECT_EQ(drawn(image, bitmap, area, true), found);
    ASSERT_EQ(found.size(), bitmap.width * bitmap.height * 4);
    for (std::size_t k = 0; k < found.size(); ++k) {
      const auto left = static_cast<double>(k / 4 % bitmap.width);
      // The area's lower left corner is the bitmap's.
      const double top = static_cast<double>(k / 4 / bitmap.width) + area.height -
                         static_cast<double>(bitmap.height);
      ASSERT_NEAR(found[k], testing::averageShown(bytes, size, 4, area, left, top, k % 4),
                  0.5 + 1e-9);
    }
  }
}

TEST(DrawnRowsTest, ImpossibleSizesHaveNoRows) {
  const CGImage image = imageOf(2, 2, noise(16));
  for (const PixelSize& bitmap : {PixelSize{0, 2}, {2, 0}, {std::size_t{1} << 40, 1}}) {
    EXPECT_FALSE(DrawnRows::create(image, bitmap, {2, 1})) << bitmap.width;
  }
  for (const Size area : {Size{0.99, 2}, {2, 0.99}, {2, -1}, {std::nan(""), 2}}) {
    EXPECT_FALSE(DrawnRows::create(image, {2, 2}, area)) << area.width;
  }
}

}  // namespace
}  // namespace FrameworkUtility::detail
