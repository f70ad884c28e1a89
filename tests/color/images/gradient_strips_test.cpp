#include <framework_utility/color/images/gradient_image.h>

#include <tests/platform/graphics/exact_gradient.h>

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace FrameworkUtility {
namespace {

using testing::ExactGradient;
using testing::expectExact;
using enum GradientDirection;

const std::vector<KvColor> colors = {{1, 0, 0}, {0, 1, 0}, {0.2, 0.4, 1}};

/// A strip that runs to `end`.
ExactGradient exactOf(const std::vector<KvColor>& stops, const std::vector<double>& locations,
                      Point end) {
  ExactGradient exact;
  for (const KvColor& color : stops) exact.colors.push_back(color.cgColor().components);
  exact.locations = locations;
  exact.end = end;
  return exact;
}

std::vector<KvColor> hues(std::initializer_list<double> values, double saturation = 1,
                          double brightness = 1) {
  std::vector<KvColor> result;
  for (const double hue : values) {
    result.push_back(KvColor::withHueSaturationBrightness(hue, saturation, brightness, 1));
  }
  return result;
}

TEST(GradientStripTest, RunsFromEdgeToEdgeOfTheRoundedSize) {
  const auto across = generateGradientImageOfSize({30.5, 7.4}, horizontal, colors, {0, 0.3, 1});
  EXPECT_EQ(across->size(), (Size{31, 7}));
  EXPECT_EQ(across->scale(), 1);  // the main screen's
  expectExact(*across->cgImage(), exactOf(colors, {0, 0.3, 1}, {31, 0}));
  const auto down = generateGradientImageOfSize({7, 31}, vertical, colors, {0, 0.3, 1});
  expectExact(*down->cgImage(), exactOf(colors, {0, 0.3, 1}, {0, 31}));
  const auto even = generateGradientImageOfSize({40, 2}, horizontal, colors);
  expectExact(*even->cgImage(), exactOf(colors, {0, 0.5, 1}, {40, 0}));
}

TEST(GradientStripTest, HasAtLeastOnePoint) {
  EXPECT_EQ(generateGradientImageOfSize({0.4, 10}, vertical, colors)->size(), (Size{1, 10}));
  EXPECT_EQ(generateGradientImageOfSize({-5, 0}, vertical, colors)->size(), (Size{1, 1}));
  for (const double side :
       {1e9, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()}) {
    EXPECT_FALSE(generateGradientImageOfSize({side, 10}, vertical, colors)) << side;
    EXPECT_FALSE(generateGradientImageOfSize({10, side}, vertical, colors)) << side;
  }
}

TEST(GradientStripTest, BadStopsGiveNoImageAndNoColorsStop) {
  EXPECT_FALSE(generateGradientImageOfSize({4, 4}, vertical, {}, {}));
  EXPECT_FALSE(generateGradientImageOfSize({4, 4}, vertical, colors, {0, 1}));
  EXPECT_DEATH(generateGradientImageOfSize({4, 4}, vertical, std::vector<KvColor>{}),
               "there are no colours");
  EXPECT_FALSE(
      generateHueGradientImageOfSize({4, 4}, vertical, std::numeric_limits<double>::quiet_NaN()));
}

TEST(GradientStripTest, HueRunsThroughTheCircleInTenths) {
  const std::vector<double> tenths = {0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1};
  const auto all = {0.0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1.0};
  const auto image = generateHueGradientImageOfSize({500, 1}, horizontal);
  expectExact(*image->cgImage(), exactOf(hues(all), tenths, {500, 0}));
  const auto pale = generateHueGradientImageOfSize({2, 100}, vertical, 0.5, 0.75);
  expectExact(*pale->cgImage(), exactOf(hues(all, 0.5, 0.75), tenths, {0, 100}));
}

TEST(GradientStripTest, LightnessRunsFromBlackToWhite) {
  const auto image = generateSelectiveLightnessGradientImageOfSize({1, 256}, vertical);
  expectExact(*image->cgImage(),
              exactOf({KvColor::blackColor(), KvColor::whiteColor()}, {0, 1}, {0, 256}));
}

TEST(SelectiveHslTest, HasSixRawValues) {
  for (std::int64_t raw = 1; raw <= 6; ++raw) {
    EXPECT_EQ(static_cast<std::int64_t>(*fromRawValue<SelectiveHsl>(raw)), raw);
  }
  for (const std::int64_t raw : {0L, 7L, -1L}) EXPECT_FALSE(fromRawValue<SelectiveHsl>(raw));
  EXPECT_DEATH(colorsForGradientOfSelectiveHue(static_cast<SelectiveHsl>(7)), "not in 1...6");
}

TEST(SelectiveHslTest, ColorsRunFromTheOppositeHueAndBack) {
  for (std::int64_t raw = 1; raw <= 6; ++raw) {
    const auto strip = colorsForGradientOfSelectiveHue(static_cast<SelectiveHsl>(raw));
    ASSERT_EQ(strip.size(), 7U);
    for (int i = 0; i < 7; ++i) {
      // In sixths of the circle, where a colour has components of 0 and 1 alone.
      const int sixths = static_cast<int>(raw - 1 + 3 + i) % 6;
      const KvColor expected = hues({sixths / 6.0})[0];
      const KvColor& color = strip[static_cast<std::size_t>(i)];
      EXPECT_NEAR(color.red, expected.red, 1e-12) << raw << ' ' << i;
      EXPECT_NEAR(color.green, expected.green, 1e-12) << raw << ' ' << i;
      EXPECT_NEAR(color.blue, expected.blue, 1e-12) << raw << ' ' << i;
    }
  }
  // Locations are sums of a sixth, of which the last falls short of 1: the step to it as well.
  const auto image = selectiveHueGradientImageForType(SelectiveHsl::red, {70, 1}, horizontal);
  std::vector<double> locations = {0};
  for (int i = 1; i < 7; ++i) locations.push_back(locations.back() + 1.0 / 6);
  expectExact(*image->cgImage(),
              exactOf(colorsForGradientOfSelectiveHue(SelectiveHsl::red), locations, {70, 0}));
}

}  // namespace
}  // namespace FrameworkUtility
