#include <framework_utility/platform/graphics/area_scaler.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

namespace FrameworkUtility::detail {
namespace {

TEST(AreaScalerTest, IsTheAverageOfTheArea) {
  struct Case {
    PixelSize size, target;
  };
  for (const auto& [size, target] :
       {Case{{40, 30}, {10, 10}}, Case{{40, 30}, {40, 30}}, Case{{41, 31}, {40, 30}},
        Case{{41, 31}, {7, 5}}, Case{{41, 31}, {1, 1}}, Case{{1, 31}, {1, 4}},
        Case{{41, 1}, {4, 1}}, Case{{3, 1500}, {2, 2}}, Case{{1500, 3}, {2, 2}},
        Case{{97, 89}, {53, 83}}}) {
    for (const std::size_t components : {1U, 3U, 4U}) {
      SCOPED_TRACE(::testing::Message() << size.width << 'x' << size.height << " to "
                                        << target.width << 'x' << target.height);
      auto source = testing::noise(size.width * size.height * components);
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
  for (const PixelSize& target :
       {PixelSize{11, 10}, PixelSize{10, 11}, PixelSize{0, 10}, PixelSize{10, 0}}) {
    EXPECT_FALSE(AreaScaler::create({10, 10}, target, 4)) << target.width << ' ' << target.height;
  }
  constexpr std::size_t tooMuch = std::size_t{1} << 40;
  EXPECT_FALSE(AreaScaler::create({10, tooMuch}, {10, 10}, 4));
  EXPECT_FALSE(AreaScaler::create({tooMuch, 10}, {10, 10}, 4));
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

}  // namespace
}  // namespace FrameworkUtility::detail
