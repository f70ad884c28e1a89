#include <framework_utility/color/images/gradient_image.h>

#include <framework_utility/platform/imageio/ui_image_coding.h>
#include <tests/platform/graphics/exact_gradient.h>

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace FrameworkUtility {
namespace {

using testing::ExactGradient;
using testing::expectExact;
using enum GradientDirection;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

const std::vector<KvColor> opaque = {{0.9, 0.1, 0.2}, {0.95, 0.8, 0.1}, {0.1, 0.6, 0.9}};
const std::vector<KvColor> veils = {{0.9, 0.1, 0.2, 0.3}, {0.95, 0.8, 0.1, 1}, {0.1, 0.6, 0.9, 0}};
const std::vector<double> locations = {0, 0.35, 1};

ExactGradient exactOf(const std::vector<KvColor>& colors, Point start, Point end,
                      const std::vector<double>& places = locations) {
  ExactGradient exact;
  for (const KvColor& color : colors) exact.colors.push_back(color.cgColor().components);
  exact.locations = places;
  exact.start = start;
  exact.end = end;
  return exact;
}

ExactGradient exactCircle(const std::vector<KvColor>& colors, Point center, double radius) {
  ExactGradient exact = exactOf(colors, center, {});
  exact.kind = ExactGradient::Kind::radial;
  exact.radius = radius;
  return exact;
}

TEST(GradientImageTest, LinearOnesAreExactAtEveryScale) {
  for (const double scale : {1.0, 2.0, 3.0}) {
    for (const auto* colors : {&opaque, &veils}) {
      // 12.5 rounds away from zero.
      const auto image =
          generateGradientImageOfSize({20.4, 12.5}, scale, *colors, locations, {3, 11}, {17, 2});
      ASSERT_TRUE(image);
      EXPECT_EQ(image->size(), (Size{20, 13}));
      EXPECT_EQ(image->scale(), scale);
      EXPECT_EQ(image->cgImage()->alphaInfo(), colors == &opaque
                                                   ? CGImageAlphaInfo::noneSkipLast
                                                   : CGImageAlphaInfo::premultipliedLast);
      expectExact(*image->cgImage(), exactOf(*colors, {3, 11}, {17, 2}), scale);
    }
  }
  const auto same = generateGradientImageOfSize({3, 3}, 1, opaque, locations, {1, 1}, {1, 1});
  expectExact(*same->cgImage(), exactOf(opaque, {1, 1}, {1, 1}));
}

TEST(GradientImageTest, RadialOnesReachHalfTheDiagonal) {
  const ExactGradient expected = exactCircle(veils, {30, 40}, std::sqrt(5000.0));
  const auto image = generateRadialGradientImageOfSize({100, 100}, 1, veils, locations, {30, 40},
                                                       {nan, infinity});  // which plays no part
  ASSERT_TRUE(image);
  expectExact(*image->cgImage(), expected);
  // Of the rounded size.
  const auto rounded =
      generateRadialGradientImageOfSize({30.4, 39.6}, 2, opaque, locations, {15, 20}, {});
  expectExact(*rounded->cgImage(), exactCircle(opaque, {15, 20}, 25), 2);
}

TEST(GradientImageTest, AGradientsPointsAreFractionsOfTheSizeAsGiven) {
  using enum KvGradientType;
  const Size size{20.4, 9.6};
  const auto line = generateGradientImageOfSize(
      size, 1, KvGradient(linear, veils, locations, {0.25, 0}, {1, 0.5}));
  expectExact(*line->cgImage(), exactOf(veils, {5.1, 0}, {20.4, 4.8}));
  // The end point plays no part.
  const auto circle = generateGradientImageOfSize(
      size, 1, KvGradient(radial, veils, locations, {0.25, 0.5}, {0.3, 0.3}));
  expectExact(*circle->cgImage(), exactCircle(veils, {5.1, 4.8}, std::sqrt(125.0)));

  KvGradient neither(linear, opaque, locations);
  neither.type = static_cast<KvGradientType>(2);
  EXPECT_DEATH(generateGradientImageOfSize(size, 1, neither), "neither linear nor radial");
}

TEST(GradientImageTest, JpegIsWrittenAtSeventyPercent) {
  const Size size{64, 48};
  const auto data = generateGradientJpgDataOfSize(size, 2, opaque, locations, {0, 0}, {64, 48});
  ASSERT_TRUE(data);
  const auto image = generateGradientImageOfSize(size, 2, opaque, locations, {0, 0}, {64, 48});
  EXPECT_EQ(*data, UIImageJPEGRepresentation(*image, 0.7));
  EXPECT_FALSE(generateGradientJpgDataOfSize(size, 2, opaque, {0, 1}, {0, 0}, {64, 48}));
}

TEST(GradientImageTest, BadInputGivesNoImage) {
  struct Input {
    Size size{4, 4};
    double scale = 1;
    std::vector<KvColor> colors = opaque;
    std::vector<double> places = locations;
    Point start{0, 0};
    Point end{4, 4};
  };
  const auto refuses = [](const auto& change) {
    Input i;
    change(i);
    return !generateGradientImageOfSize(i.size, i.scale, i.colors, i.places, i.start, i.end) &&
           !generateRadialGradientImageOfSize(i.size, i.scale, i.colors, i.places, i.start,
                                              i.end) &&
           !generateGradientJpgDataOfSize(i.size, i.scale, i.colors, i.places, i.start, i.end);
  };
  EXPECT_FALSE(refuses([](Input&) {}));
  EXPECT_FALSE(refuses([](Input& i) { i.size.width = 0.5; }));
  for (const double side : {0.0, 0.4, -4.0, 1e9, 1e300, nan, infinity}) {
    EXPECT_TRUE(refuses([&](Input& i) { i.size.width = side; })) << side;
    EXPECT_TRUE(refuses([&](Input& i) { i.size.height = side; })) << side;
  }
  EXPECT_TRUE(refuses([](Input& i) { i.scale = 1e9; }));
  EXPECT_TRUE(refuses([](Input& i) { i.scale = nan; }));
  EXPECT_TRUE(refuses([](Input& i) { i.colors.clear(); }));
  EXPECT_TRUE(refuses([](Input& i) { i.places.pop_back(); }));
  EXPECT_TRUE(refuses([](Input& i) { i.places[1] = nan; }));
  EXPECT_TRUE(refuses([](Input& i) { i.start.y = infinity; }));
  EXPECT_TRUE(refuses([](Input& i) { i.colors[0].alpha = nan; }));
  EXPECT_FALSE(generateGradientImageOfSize({4, 4}, 1, opaque, locations, {0, 0}, {4, nan}));
}

std::vector<KvColor> hues(const std::vector<double>& values, double saturation = 1,
                          double brightness = 1) {
  std::vector<KvColor> result;
  for (const double hue : values) {
    result.push_back(KvColor::withHueSaturationBrightness(hue, saturation, brightness, 1));
  }
  return result;
}

TEST(GradientStripTest, RunsFromEdgeToEdgeOfTheRoundedSize) {
  const auto across = generateGradientImageOfSize({30.5, 7.4}, horizontal, opaque, locations);
  EXPECT_EQ(across->size(), (Size{31, 7}));
  EXPECT_EQ(across->scale(), 1);  // the main screen's
  expectExact(*across->cgImage(), exactOf(opaque, {}, {31, 0}));
  const auto even = generateGradientImageOfSize({2, 40}, vertical, opaque);
  expectExact(*even->cgImage(), exactOf(opaque, {}, {0, 40}, {0, 0.5, 1}));
  // At least one point.
  EXPECT_EQ(generateGradientImageOfSize({0.4, 10}, vertical, opaque)->size(), (Size{1, 10}));
  EXPECT_EQ(generateGradientImageOfSize({-5, 0}, vertical, opaque)->size(), (Size{1, 1}));
}

TEST(GradientStripTest, BadInputGivesNoImageAndNoColorsStop) {
  for (const double side : {1e9, infinity, nan}) {
    EXPECT_FALSE(generateGradientImageOfSize({side, 10}, vertical, opaque)) << side;
  }
  EXPECT_FALSE(generateGradientImageOfSize({4, 4}, vertical, opaque, {0, 1}));
  EXPECT_FALSE(generateHueGradientImageOfSize({4, 4}, vertical, nan));
  EXPECT_DEATH(generateGradientImageOfSize({4, 4}, vertical, std::vector<KvColor>{}),
               "there are no colours");
}

TEST(GradientStripTest, HueRunsThroughTheCircleInTenths) {
  const std::vector<double> tenths = {0, 0.1, 0.2, 0.3, 0.4, 0.5, 0.6, 0.7, 0.8, 0.9, 1};
  const auto image = generateHueGradientImageOfSize({500, 1}, horizontal);
  expectExact(*image->cgImage(), exactOf(hues(tenths), {}, {500, 0}, tenths));
  const auto pale = generateHueGradientImageOfSize({2, 100}, vertical, 0.5, 0.75);
  expectExact(*pale->cgImage(), exactOf(hues(tenths, 0.5, 0.75), {}, {0, 100}, tenths));
}

TEST(GradientStripTest, LightnessRunsFromBlackToWhite) {
  const auto image = generateSelectiveLightnessGradientImageOfSize({1, 256}, vertical);
  expectExact(*image->cgImage(),
              exactOf({KvColor::blackColor(), KvColor::whiteColor()}, {}, {0, 256}, {0, 1}));
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
    for (std::int64_t i = 0; i < 7; ++i) {
      // Sixths of the circle, where a colour has components of 0 and 1 alone.
      const KvColor expected = hues({static_cast<double>((raw - 1 + 3 + i) % 6) / 6})[0];
      EXPECT_LT(strip[static_cast<std::size_t>(i)].intensityDifferenceWithColor(expected), 1e-12)
          << raw << ' ' << i;
    }
  }
  // Locations are sums of a sixth, of which the last falls short of 1: the step to it as well.
  const auto image = selectiveHueGradientImageForType(SelectiveHsl::red, {70, 1}, horizontal);
  std::vector<double> sums = {0};
  while (sums.size() < 7) sums.push_back(sums.back() + 1.0 / 6);
  expectExact(*image->cgImage(),
              exactOf(colorsForGradientOfSelectiveHue(SelectiveHsl::red), {}, {70, 0}, sums));
}

}  // namespace
}  // namespace FrameworkUtility
