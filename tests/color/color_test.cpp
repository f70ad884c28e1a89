#include <framework_utility/color/color.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>

namespace FrameworkUtility {
namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr UITraitCollection light{UIUserInterfaceStyle::light};
constexpr UITraitCollection dark{UIUserInterfaceStyle::dark};

/// Exactly these components, where `==` would compare hundredths.
void expectIs(const KvColor& color, double red, double green, double blue, double alpha) {
  EXPECT_EQ(color.cgColor(), (CGColor{{red, green, blue, alpha}}));
}

void expectNear(const KvColor& color, double red, double green, double blue) {
  EXPECT_NEAR(color.red, red, 1e-14);
  EXPECT_NEAR(color.green, green, 1e-14);
  EXPECT_NEAR(color.blue, blue, 1e-14);
}

KvColor unclamped(double red, double green, double blue, double alpha) {
  KvColor color(red, green, blue, alpha);
  std::tie(color.red, color.green, color.blue, color.alpha) = std::tie(red, green, blue, alpha);
  return color;
}

TEST(ColorTest, ConstructorsClampAndFieldsDoNot) {
  KvColor color(1.5, -0.2, 0.5, 2);
  expectIs(color, 1, 0, 0.5, 1);
  color.red = 1.5;
  EXPECT_EQ(color.red, 1.5);
  expectIs(color.copy(), 1, 0, 0.5, 1);

  expectIs(KvColor::withWhite(7, 0.5), 1, 1, 1, 0.5);
  expectIs(KvColor(UIColor(2, -1, 0.5, 3)), 1, 0, 0.5, 1);
  expectIs(KvColor::withHueSaturationBrightness(0.5, 1, 1, 7), 0, 1, 1, 1);
  // Hue, saturation and lightness are written as they come out.
  expectIs(KvColor::withHueSaturationLightness(0, 0, 3, 7), 3, 3, 3, 7);
  expectIs(KvColor::withHueSaturationLightness(0, 1, 0.5), 1, 0, 0, 1);
}

TEST(ColorTest, NaNStays) {
  const KvColor color(nan, nan, nan, nan);
  for (const KvColor& c :
       {color, color.copy(), color.addIntensity(0.5), color.greyscale(), color.negative(),
        KvColor(color.uiColor()), color.interpolateWithColorWithColor(KvColor::whiteColor(), 0.5),
        KvColor::withHueSaturationBrightness(nan, nan, nan, nan)}) {
    EXPECT_EQ(c.description(), "KvColor: r nan, g nan, b nan, a nan");
  }
  EXPECT_FALSE(color.isLight() || color.isDark() || color.isVeryLight() || color.isVeryDark() ||
               color.isWhite() || color.isOpaque() || color.isNoColor());
  EXPECT_TRUE(std::isnan(
      KvColor::blackColor().interpolateWithColorWithColor(KvColor::whiteColor(), nan).red));
}

TEST(ColorDeathTest, WhatIsNoIntegerHasNoTextAndNoIdentity) {
  const KvColor whole(0.5, 0.5, 0.5);
  for (const double odd : {nan, 1 / 0.0, -1 / 0.0, 1e300}) {
    SCOPED_TRACE(odd);
    const KvColor color = unclamped(0.25, 0.5, 0.5, odd);
    EXPECT_DEATH((void)color.identifier(), "not finite, or too large");
    EXPECT_DEATH((void)std::hash<KvColor>()(color), "not finite, or too large");
    // Although red differs already.
    EXPECT_DEATH((void)(color == whole), "not finite, or too large");
    EXPECT_FALSE(color.isEqualDiscardAlpha(whole)) << "alpha is not looked at";
    EXPECT_EQ(color.hexString(), "#3F7F7F");
    EXPECT_DEATH((void)unclamped(0, 0, odd, 1).hexString(), "not finite, or too large");
  }
}

TEST(ColorTest, TextsTruncate) {
  EXPECT_EQ(KvColor(0.999, 0.5, 0).hexStringWithoutHash(), "FE7F00");
  EXPECT_EQ(KvColor(1, 0, 1).hexString(), "#FF00FF");
  EXPECT_EQ(KvColor(1, 0.5, 0).identifier(), "100.50.0.100");
  EXPECT_EQ(KvColor(0.29, 0.57, 0.58).identifier(), "28.56.57.100");
  std::ostringstream out;
  out << KvColor(1, 0.1, 1e-5, 0.25);
  EXPECT_EQ(out.str(), "KvColor: r 1.0, g 0.1, b 1e-05, a 0.25");

  // Outside 0...1: digits more than six, and the low 32 bits of what is negative or wider.
  EXPECT_EQ(unclamped(1.5, 0, 0, 1).hexString(), "#17E0000");
  EXPECT_EQ(unclamped(0, 0, -1 / 255.0, 1).hexString(), "#FFFFFFFF");
  EXPECT_EQ(unclamped(0x1p40 / 255, 0, 1 / 255.0, 1).hexString(), "#000001");
  EXPECT_EQ(unclamped(-1.5, 0, 0, 1).identifier(), "-150.0.0.100");
}

TEST(ColorTest, EqualAreColoursOfTheSameHundredths) {
  // 0.29 · 100 lies just below 29, which is meant.
  for (const auto& [x, y, areEqual] : {std::tuple{0.501, 0.509, true},
                                       {0.499, 0.501, false},
                                       {0.28, 0.29, true},
                                       {0.29, 0.294, false},
                                       {0.57, 0.58, false},
                                       {0.30, 0.31, false}}) {
    for (double KvColor::*component :
         {&KvColor::red, &KvColor::green, &KvColor::blue, &KvColor::alpha}) {
      SCOPED_TRACE(::testing::Message() << x << ' ' << y);
      KvColor a(0.1, 0.1, 0.1, 0.1), b = a;
      a.*component = x;
      b.*component = y;
      EXPECT_EQ(a == b, areEqual);
      EXPECT_EQ(a.isEqualDiscardAlpha(b), areEqual || component == &KvColor::alpha);
      EXPECT_TRUE(!areEqual || std::hash<KvColor>()(a) == std::hash<KvColor>()(b));
    }
  }
  EXPECT_EQ(KvColor::whiteColorDarkModeEnabledWithWhite(0.2, 1), KvColor::withWhite(0.2, 1))
      << "variants do not count";
}

TEST(ColorTest, CopiesHaveNoVariants) {
  const KvColor color = KvColor::whiteColorDarkModeEnabledWithWhite(0.25, 0.5);
  const UIColor plain(0.25, 0.25, 0.25, 0.5), inverted(0.75, 0.75, 0.75, 0.5);
  ASSERT_TRUE(color.others);
  EXPECT_EQ(color.others->at(2).uiColor(), inverted);
  EXPECT_EQ(color.uiColor().resolvedColorWithTraitCollection(dark), inverted);
  EXPECT_EQ(color.uiColor().resolvedColorWithTraitCollection(light), plain);
  EXPECT_EQ(color.uiColor().resolvedColorWithTraitCollection({}), plain);

  const KvColor sharing = color;
  EXPECT_EQ(sharing.others, color.others) << "plain C++ copies keep them";
  EXPECT_EQ(color.copy().uiColor(), plain);
  EXPECT_FALSE(KvColor::colorForDefaultInterface(color, std::nullopt).others);
  // The dark colour is taken as it is, its own variant included.
  const KvColor nested = KvColor::colorForDefaultInterface(KvColor::whiteColor(), color);
  EXPECT_EQ(nested.uiColor().resolvedColorWithTraitCollection(dark), inverted);

  KvColor lightOnly = KvColor::blackColor();
  lightOnly.others = std::make_shared<KvColorVariants>(KvColorVariants{{1, color}});
  EXPECT_EQ(lightOnly.uiColor(), UIColor(0, 0, 0, 1)) << "plain without a dark one";
}

TEST(ColorTest, ConversionsKeepComponents) {
  const KvColor color = unclamped(2, -1, 0.5, 0.25);
  EXPECT_EQ(color.uiColor(), UIColor(2, -1, 0.5, 0.25));
  EXPECT_EQ(color.uiColorWithAlpha(3), UIColor(2, -1, 0.5, 3));
  EXPECT_EQ(color.getUIColorWithAlphaMultipliedBy(8), UIColor(2, -1, 0.5, 2));
  EXPECT_EQ(color.ciColor(), (CIColor{{2, -1, 0.5, 0.25}}));
  EXPECT_EQ(KvColor::cgColors({color, KvColor::whiteColor()}),
            (std::vector{CGColor{{2, -1, 0.5, 0.25}}, CGColor{{1, 1, 1, 1}}}));
  EXPECT_EQ(KvColor::kvColorsWithColors({UIColor(2, 0, 0, 1), UIColor(0, 0, 1, 0)}),
            (std::vector{KvColor(1, 0, 0), KvColor(0, 0, 1, 0)}));
  EXPECT_EQ(KvColor::withHexString("#FF8000"), KvColor(1, 128 / 255.0, 0));
  EXPECT_FALSE(KvColor::withHexString("FF80"));
}

TEST(ColorTest, LightnessIsStrictAndLeavesTheMiddleToNeither) {
  // Very dark, dark, light, very light.
  const std::pair<double, std::string> cases[] = {{0.05, "Dd--"}, {0.1, "-d--"}, {0.29, "-d--"},
                                                  {0.3, "----"},  {0.4, "----"}, {0.5, "----"},
                                                  {0.51, "--l-"}, {0.9, "--l-"}, {0.95, "--lL"}};
  for (const auto& [grey, expected] : cases) {
    const KvColor color = KvColor::withWhite(grey, 1);
    const std::string found{color.isVeryDark() ? 'D' : '-', color.isDark() ? 'd' : '-',
                            color.isLight() ? 'l' : '-', color.isVeryLight() ? 'L' : '-'};
    EXPECT_EQ(found, expected) << grey;
    EXPECT_EQ(KvColor::isLightnessLight(grey), color.isLight());
  }
  EXPECT_TRUE(KvColor(1, 0.1, 0.1).isLight()) << "by lightness, not by the mean";
}

TEST(ColorTest, BoundsOfWhiteOpaqueAndNoColour) {
  EXPECT_TRUE(KvColor::whiteColor().isWhite());
  EXPECT_FALSE(KvColor(1, 1, 1 - epsilon / 2).isWhite()) << "lightness 1, but saturation 1 too";
  EXPECT_FALSE(KvColor::withWhite(1 - epsilon, 1).isWhite());
  EXPECT_TRUE(unclamped(0, 0, 0, 1 - epsilon / 2).isOpaque());
  EXPECT_FALSE(unclamped(0, 0, 0, 1 - epsilon).isOpaque());
  EXPECT_TRUE(KvColor(0, 0, 0, 0).isNoColor());
  EXPECT_TRUE(unclamped(-5, -5, -5, -5).isNoColor());
  for (const KvColor& color : {KvColor(epsilon, 0, 0, 0), KvColor(0, epsilon, 0, 0),
                               KvColor(0, 0, epsilon, 0), KvColor(0, 0, 0, epsilon)}) {
    EXPECT_FALSE(color.isNoColor());
  }
}

TEST(ColorTest, ArithmeticGivesClampedColours) {
  const KvColor color(0.25, 0.5, 0.75, 0.5);
  expectIs(color.addIntensity(0.5), 0.75, 1, 1, 0.5);
  expectIs(color.addIntensity(-0.5), 0, 0, 0.25, 0.5);
  expectIs(color.greyscale(), 0.5, 0.5, 0.5, 0.5);
  expectIs(color.negative(), 0.75, 0.5, 0.25, 0.5);
  expectIs(color.withAlphaComponent(7), 0.25, 0.5, 0.75, 1);
  expectIs(unclamped(3, -1, 0.5, 4).negative(), 0, 1, 0.5, 1);
  expectNear(color.getColorWithSaturationMultipliedBy(1), 0.125, 0.5, 0.875);
  EXPECT_EQ(color.getColorWithSaturationMultipliedBy(1).alpha, 0.5);

  EXPECT_EQ(color.intensityDifferenceWithColor(KvColor(0.5, 0.25, 0.75, 1)), 0.5 / 3);
  EXPECT_EQ(color.intensityDifferenceWithColor(std::nullopt), 0);

  const KvColor other(0.75, 0, 0.25, 0);
  expectIs(color.interpolateWithColorWithColor(other, 0.25), 0.375, 0.375, 0.625, 0.375);
  expectIs(color.interpolateWithColorWithColor(other, -3), 0.25, 0.5, 0.75, 0.5);
  // The formula, whose rounding at 1 need not give the other colour.
  EXPECT_EQ(KvColor(0.7, 0, 0).interpolateWithColorWithColor(KvColor(0.1, 0, 0), 1).red,
            0.7 + (0.1 - 0.7));
}

TEST(ColorTest, SaturationAndLightnessAreBoundedAboveOnly) {
  const KvColor dull(0.75, 0.25, 0.25, 0.5);  // hue 0, saturation 0.5, lightness 0.5
  const auto added = [](KvColor color, double saturation, double lightness) {
    color.addSaturation(saturation, lightness);
    return color;
  };
  expectNear(added(dull, 9, 0), 1, 0, 0);
  expectNear(added(dull, 0, 9), 1, 1, 1);
  expectNear(added(dull, 0, -1), -0.75, -0.25, -0.25);
  expectNear(added(KvColor::withWhite(0.5, 1), 0.5, 0), 0.75, 0.25, 0.25);  // greys have hue 0
  EXPECT_EQ(added(dull, 9, 0).alpha, 0.5);

  const auto multiplied = [](KvColor color, double saturation, double lightness) {
    color.multiplySaturationBy(saturation, lightness);
    return color;
  };
  expectNear(multiplied(dull, 0.5, 0.5), 0.3125, 0.1875, 0.1875);
  expectNear(multiplied(dull, 1, -1), -0.75, -0.25, -0.25);
}

}  // namespace
}  // namespace FrameworkUtility
