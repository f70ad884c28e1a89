#include <framework_utility/color/hsl.h>

#include <gtest/gtest.h>

#include <cmath>

namespace FrameworkUtility {
namespace {

void expectNear(const RGB& found, const RGB& expected, double tolerance) {
  EXPECT_NEAR(found.red, expected.red, tolerance);
  EXPECT_NEAR(found.green, expected.green, tolerance);
  EXPECT_NEAR(found.blue, expected.blue, tolerance);
}

TEST(HslTest, KnownColoursBothWays) {
  struct Case {
    const char* name;
    RGB rgb;
    HSL hsl;
  };
  for (const Case& c : {
           Case{"black", {0, 0, 0}, {0, 0, 0}},
           Case{"white", {1, 1, 1}, {0, 0, 1}},
           Case{"grey", {0.5, 0.5, 0.5}, {0, 0, 0.5}},
           Case{"red", {1, 0, 0}, {0, 1, 0.5}},
           Case{"yellow", {1, 1, 0}, {1.0 / 6, 1, 0.5}},
           Case{"green", {0, 0.5, 0}, {1.0 / 3, 1, 0.25}},
           Case{"cyan", {0, 1, 1}, {0.5, 1, 0.5}},
           Case{"blue", {0, 0, 1}, {2.0 / 3, 1, 0.5}},
           Case{"magenta", {1, 0, 1}, {5.0 / 6, 1, 0.5}},
           Case{"rose", {1, 0, 0.5}, {11.0 / 12, 1, 0.5}},
           Case{"pale orange", {1, 0.75, 0.5}, {1.0 / 12, 1, 0.75}},
           Case{"dull blue", {0.25, 0.375, 0.5}, {7.0 / 12, 1.0 / 3, 0.375}},
       }) {
    SCOPED_TRACE(c.name);
    const HSL found = rgbToHsl(c.rgb);
    EXPECT_NEAR(found.hue, c.hsl.hue, 1e-15);
    EXPECT_NEAR(found.saturation, c.hsl.saturation, 1e-15);
    EXPECT_NEAR(found.lightness, c.hsl.lightness, 1e-15);
    expectNear(hslToRgb(c.hsl), c.rgb, 1e-14);
  }
}

TEST(HslTest, EveryColourComesBack) {
  for (int r = 0; r <= 16; ++r) {
    for (int g = 0; g <= 16; ++g) {
      for (int b = 0; b <= 16; ++b) {
        const RGB color{r / 16.0, g / 16.0, b / 16.0};
        const HSL hsl = rgbToHsl(color);
        EXPECT_TRUE(hsl.hue >= 0 && hsl.hue < 1) << hsl.hue;
        expectNear(hslToRgb(hsl), color, 1e-14);
      }
    }
  }
}

TEST(HslTest, HuesBeyondTheCircleTakeOneTurnAlone) {
  expectNear(hslToRgb({1, 1, 0.5}), {1, 0, 0}, 1e-14);
  expectNear(hslToRgb({-0.25, 1, 0.5}), hslToRgb({0.75, 1, 0.5}), 1e-14);
  // Saturation below 2.2e-16 is none, negative too.
  EXPECT_EQ(hslToRgb({0.3, 2e-16, 0.25}), (RGB{0.25, 0.25, 0.25}));
  EXPECT_EQ(hslToRgb({0.3, -1, 0.25}), (RGB{0.25, 0.25, 0.25}));
}

TEST(HslTest, TheBoostMovesMediumSaturationMost) {
  for (const double m : {-0.5, 0.0, 0.3, 1.0, 7.0}) {
    EXPECT_EQ(saturationMultipliedBy(0, m), 0);
    EXPECT_EQ(saturationMultipliedBy(1, m), 1);
    for (int i = 0; i <= 100; ++i) {
      const double s = i / 100.0;
      EXPECT_NEAR(saturationMultipliedBy(s, m), std::fmin(s + m * s * (1 - s), 1), 1e-14);
    }
  }
  EXPECT_EQ(rgbToHsl(multiplySaturationOf({0.75, 0.5, 0.25}, 1)).saturation, 0.75);
  EXPECT_EQ(multiplySaturationOf({0.5, 0.5, 0.5}, 9), (RGB{0.5, 0.5, 0.5}));
}

}  // namespace
}  // namespace FrameworkUtility
