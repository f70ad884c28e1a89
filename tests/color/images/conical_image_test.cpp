#include <framework_utility/color/images/conical_rows.h>
#include <framework_utility/color/images/gradient_image.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace FrameworkUtility {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

using Bytes = std::vector<std::uint8_t>;

/// The rule as it is written down, pixel by pixel.
Bytes plainLoop(std::vector<KvColor> colors, std::size_t width, std::size_t height) {
  colors.push_back(colors.front());
  std::vector<double> locations;
  for (std::size_t i = 0; i < colors.size(); ++i) {
    locations.push_back(static_cast<double>(i) / static_cast<double>(colors.size() - 1));
  }
  const Size size{static_cast<double>(width), static_cast<double>(height)};
  Bytes bytes;
  for (double y = 0; y < size.height; ++y) {
    for (double x = 0; x < size.width; ++x) {
      const auto color = interpolatedColor(conicalGradientStop({x, y}, size), colors, locations);
      for (const double component : {color->red, color->green, color->blue, 1.0}) {
        bytes.push_back(static_cast<std::uint8_t>(component * 255));
      }
    }
  }
  return bytes;
}

Bytes rowsOf(std::vector<KvColor> colors, std::size_t width, std::size_t height,
             detail::InstructionSet instructions) {
  colors.push_back(colors.front());
  const detail::ConicalRows rows(std::move(colors), width, height);
  Bytes bytes(4 * width * height);
  for (std::size_t y = 0; y < height; ++y) {
    rows.fillRow(y, bytes.data() + 4 * width * y, instructions);
  }
  return bytes;
}

void expectPlain(const std::vector<KvColor>& colors, std::size_t width, std::size_t height) {
  const Bytes expected = plainLoop(colors, width, height);
  for (const auto instructions : {detail::InstructionSet::baseline, detail::instructionSet()}) {
    // Not EXPECT_EQ, which would print megabytes.
    ASSERT_TRUE(rowsOf(colors, width, height, instructions) == expected)
        << width << " x " << height << ", " << colors.size() << " colors";
  }
}

std::vector<KvColor> randomColors(std::size_t count, std::mt19937& random) {
  std::uniform_real_distribution<> unit(0, 1);
  std::vector<KvColor> colors;
  while (colors.size() < count) colors.emplace_back(unit(random), unit(random), unit(random));
  return colors;
}

TEST(ConicalRowsTest, EverySmallSizeIsThePlainLoopsToTheByte) {
  std::mt19937 random(1);
  for (std::size_t width = 1; width <= 32; ++width) {
    for (std::size_t height = 1; height <= 32; ++height) {
      expectPlain(randomColors(1 + random() % 12, random), width, height);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(ConicalRowsTest, ColorsAndShapesOfEveryKindAreThePlainLoopsToTheByte) {
  std::mt19937 random(2);
  std::vector<std::vector<KvColor>> kinds = {
      {{1, 1, 1}},
      {{0, 0, 0}, {1, 1, 1}},
      // Whole levels, flat next to steep, and slopes too small to see.
      {{0.6, 0.2, 1}, {0.6, 0.4, 1}, {0.6, 0.4, 0}, {1, 1, 1}, {1 - 1e-9, 1, 1}},
      // Alpha does not count; components beyond 0...1 are clamped after mixing.
      {{0.3, 0.4, 0.5, 0}, {0.9, 0.1, 0.5, 0.5}},
      {{0.3, 0.4, 0.5}, {0.9, 0.1, 0.5}, {0.2, 0.7, 0.1}},
      randomColors(100, random),
      randomColors(3000, random),
  };
  kinds[4][0].red = 1.7;
  kinds[4][1].green = -0.4;
  for (const auto& colors : kinds) {
    expectPlain(colors, 97, 64);
    if (HasFatalFailure()) return;
  }
  expectPlain(randomColors(3, random), 20'000, 5);
  expectPlain(randomColors(13, random), 6, 20'001);
  expectPlain(randomColors(2, random), 300'000, 2);
}

TEST(ConicalImageTest, IsThePlainLoopOnTheRoundedPixels) {
  const auto image = conicalGradientImageWithColors({{1, 0, 0}, {0, 0, 1}}, {25.2, 14.8}, 2);
  ASSERT_TRUE(image);
  EXPECT_EQ(image->scale(), 2);
  const CGImage& bitmap = *image->cgImage();
  EXPECT_EQ(bitmap.width(), 50U);
  EXPECT_EQ(bitmap.alphaInfo(), CGImageAlphaInfo::premultipliedLast);
  EXPECT_EQ(bitmap.colorSpace(), CGColorSpace::createDeviceRGB());
  EXPECT_EQ(testing::bytesOf(bitmap.pixels()), plainLoop({{1, 0, 0}, {0, 0, 1}}, 50, 30));
}

TEST(ConicalImageTest, TheDefaultsAreBlueAndRedOnFortyPoints) {
  const auto image = conicalGradientImage();
  ASSERT_TRUE(image);
  EXPECT_EQ(image->size(), (Size{40, 40}));
  const KvColor blue(51.0 / 255, 172.0 / 255, 201.0 / 255),
      red(214.0 / 255, 77.0 / 255, 73.0 / 255);
  EXPECT_EQ(testing::bytesOf(image->cgImage()->pixels()), plainLoop({blue, red}, 40, 40));
}

TEST(ConicalImageTest, RefusesWhatHasNoPixelsAndStopsAtImpossibleNumbers) {
  EXPECT_FALSE(conicalGradientImageWithColors({}, {4, 4}, 1));
  for (const double side : {0.0, 0.4, -3.0, nan, -infinity, 1e9, 9e18}) {
    EXPECT_FALSE(conicalGradientImageWithSize({side, 4}, 1)) << side;
    EXPECT_FALSE(conicalGradientImageWithSize({4, side}, 1)) << side;
  }
  for (const double scale : {0.0, 0.1, -1.0, 1e9}) {
    EXPECT_FALSE(conicalGradientImageWithSize({4, 4}, scale)) << scale;
  }
  EXPECT_TRUE(conicalGradientImageWithSize({0.5, 0.6}, 1));

  EXPECT_DEATH(conicalGradientImageWithSize({infinity, 4}, 1), "");
  EXPECT_DEATH(conicalGradientImageWithSize({4, 1e19}, 1), "");
  EXPECT_DEATH(conicalGradientImageWithSize({4, 4}, nan), "");
  EXPECT_DEATH(conicalGradientImageWithColors({{nan, 0, 0}}, {4, 4}, 1), "is no level of 0...255");
}

TEST(ConicalImageTest, TurnsClockwiseFromThreeOClock) {
  constexpr Size size{60, 100};
  EXPECT_EQ(conicalGradientStop({60, 50}, size), 0);
  EXPECT_EQ(conicalGradientStop({30, 100}, size), 0.25);
  EXPECT_EQ(conicalGradientStop({0, 50}, size), 0.5);
  EXPECT_EQ(conicalGradientStop({30, 0}, size), 0.75);
  EXPECT_EQ(conicalGradientStop({30, 50}, size), 0);  // the centre itself
  EXPECT_EQ(conicalGradientStop({-60, 50}, {-60, 100}), 0);
}

TEST(InterpolatedColorTest, GoesByTheNearestStopsOnEitherSide) {
  const auto grey = [](double white) { return KvColor::withWhite(white, 1); };
  struct Case {
    double position;
    std::vector<double> whites;
    std::vector<double> locations;
    double expected;
  };
  for (const Case& c : std::initializer_list<Case>{
           {0.25, {0, 1}, {0, 1}, 0.25},
           {0.25, {0, 1}, {0.5, 1}, 0},        // the first colour stands at 0 as well
           {0.75, {0.2, 0.6}, {0, 0.5}, 0.6},  // and the last one at 1
           {-3, {0.2, 0.6}, {0, 1}, 0.2},
           {7, {0.2, 0.6}, {0, 1}, 0.6},
           {0.5, {0, 0.2, 0.6, 1}, {0, 0.5, 0.5, 1}, 0.2},   // of two at one place the first
           {0.75, {0, 0.2, 0.6, 1}, {0, 0.5, 0.5, 1}, 0.6},  // 0.2 and 1, half way: on both sides
           {0.3, {0, 1, 0.5}, {0.9, 0.4, 0.2}, 0.75},        // in any order
           {0.5, {0.3}, {}, 0.3},
           {0.5, {0.25, 0.75}, {}, 0.5},
           {0.5, {0.25, 0.75}, {nan, nan}, 0.5}}) {
    std::vector<KvColor> colors;
    for (const double white : c.whites) colors.push_back(grey(white));
    const auto color = interpolatedColor(c.position, colors, c.locations);
    ASSERT_TRUE(color);
    EXPECT_DOUBLE_EQ(color->green, c.expected) << c.position << ' ' << c.expected;
  }
  EXPECT_FALSE(interpolatedColor(0.5, {}, {0, 1}));
  for (const double taken : {0.8, 7.0, nan}) {  // and not taken
    EXPECT_DEATH(interpolatedColor(0.9, {grey(0), grey(1)}, {0, 0.2, taken}), "has no color");
  }
}

}  // namespace
}  // namespace FrameworkUtility
