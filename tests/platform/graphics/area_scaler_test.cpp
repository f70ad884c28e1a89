#include <framework_utility/platform/graphics/area_scaler.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace FrameworkUtility {
namespace {

using detail::AreaScaler;
using detail::fittedSize;
using detail::PixelSize;

/// How much of [i, i + 1) lies in [begin, end).
double share(std::size_t i, double begin, double end) {
  const auto left = static_cast<double>(i);
  return std::max(0.0, std::min(left + 1, end) - std::max(left, begin));
}

/// The average of the area under a pixel, by definition.
double areaAverage(const std::vector<std::uint8_t>& source, PixelSize size, PixelSize target,
                   std::size_t components, std::size_t x, std::size_t y, std::size_t c) {
  const double sx = static_cast<double>(size.width) / static_cast<double>(target.width);
  const double sy = static_cast<double>(size.height) / static_cast<double>(target.height);
  const double left = static_cast<double>(x) * sx;
  const double top = static_cast<double>(y) * sy;
  double sum = 0;
  for (auto j = static_cast<std::size_t>(top); j < size.height && static_cast<double>(j) < top + sy;
       ++j) {
    for (auto i = static_cast<std::size_t>(left);
         i < size.width && static_cast<double>(i) < left + sx; ++i) {
      sum += share(i, left, left + sx) * share(j, top, top + sy) *
             source[(j * size.width + i) * components + c];
    }
  }
  return sum / (sx * sy);
}

TEST(AreaScalerTest, IsTheAverageOfTheArea) {
  struct Case {
    PixelSize source, target;
  };
  for (const Case& c : {Case{{40, 30}, {10, 10}},
                        {{40, 30}, {40, 30}},
                        {{41, 31}, {40, 30}},
                        {{41, 31}, {7, 5}},
                        {{41, 31}, {1, 1}},
                        {{1, 31}, {1, 4}},
                        {{41, 1}, {4, 1}},
                        {{64, 48}, {63, 2}},
                        {{3, 1500}, {2, 2}},
                        {{1500, 3}, {2, 2}},
                        {{97, 89}, {53, 83}}}) {
    for (const std::size_t components : {1U, 3U, 4U}) {
      SCOPED_TRACE(std::to_string(c.source.width) + "x" + std::to_string(c.source.height) + " to " +
                   std::to_string(c.target.width) + "x" + std::to_string(c.target.height) + ", " +
                   std::to_string(components));
      auto source = testing::noise(c.source.width * c.source.height * components);
      std::fill_n(source.begin(), source.size() / 3, std::uint8_t{255});
      auto scaler = AreaScaler::create(c.source, c.target, components);
      ASSERT_TRUE(scaler);
      std::vector<std::uint8_t> result(c.target.width * c.target.height * components);
      std::size_t rows = 0;
      for (std::size_t y = 0; y < c.source.height; ++y) {
        ASSERT_LT(rows, c.target.height);
        rows += scaler->push(&source[y * c.source.width * components],
                             &result[rows * c.target.width * components])
                    ? 1
                    : 0;
      }
      ASSERT_EQ(rows, c.target.height);
      for (std::size_t i = 0; i < result.size(); ++i) {
        const std::size_t pixel = i / components;
        ASSERT_NEAR(result[i],
                    areaAverage(source, c.source, c.target, components, pixel % c.target.width,
                                pixel / c.target.width, i % components),
                    0.501);
      }
    }
  }
}

TEST(AreaScalerTest, RefusesToEnlarge) {
  EXPECT_FALSE(AreaScaler::create({10, 10}, {11, 10}, 4));
  EXPECT_FALSE(AreaScaler::create({10, 10}, {10, 11}, 4));
  EXPECT_FALSE(AreaScaler::create({10, 10}, {0, 10}, 4));
  EXPECT_FALSE(AreaScaler::create({10, std::size_t{1} << 40}, {10, 10}, 4));
}

TEST(FittedSizeTest, BoundsTheLongerSide) {
  EXPECT_EQ(fittedSize({4032, 3024}, 504), (PixelSize{504, 378}));
  EXPECT_EQ(fittedSize({3024, 4032}, 500), (PixelSize{375, 500}));
  EXPECT_EQ(fittedSize({100, 100}, 100), (PixelSize{100, 100}));
  EXPECT_EQ(fittedSize({100, 50}, 4000), (PixelSize{100, 50}));
  EXPECT_EQ(fittedSize({1000, 1}, 10), (PixelSize{10, 1}));
  EXPECT_EQ(fittedSize({1000, 250}, 10), (PixelSize{10, 3}));  // 2.5 is rounded up
  EXPECT_EQ(fittedSize({1000, 1000}, 0), (PixelSize{1, 1}));
}

}  // namespace
}  // namespace FrameworkUtility
