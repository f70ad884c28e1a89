#include <framework_utility/color/color_utility.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <set>

namespace FrameworkUtility {
namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(ColorUtilityTest, HexadecimalTextRoundsInSinglePrecision) {
  EXPECT_EQ(hexString(UIColor(0.999, 0, 0, 1)), "#FF0000");
  EXPECT_EQ(KvColor(0.999, 0, 0).hexString(), "#FE0000") << "this one truncates, on purpose";
  // 127.49999745 is 127.5 in single precision.
  EXPECT_EQ(hexString(UIColor(0.49999999, 0.5 / 255, 0.499 / 255, 0)), "#800100");
  EXPECT_EQ(hexString(UIColor(2, 17, 0, 1)), "#1FE10EF00");
  EXPECT_EQ(hexString(UIColor(-1 / 255.0, 0, 0, 1)), "#FFFFFFFFFFFFFFFF0000");
  for (int i = 0; i < 256; ++i) {
    const UIColor grey(i / 255.0, i / 255.0, i / 255.0, 1);
    EXPECT_EQ(colorFromHexString(hexString(grey)), grey) << i;
  }
}

TEST(ColorUtilityDeathTest, HexadecimalTextStopsAtWhatIsNoInteger) {
  for (const double component : {nan, 1 / 0.0, -1 / 0.0, 1e300, -1e17, 0x1p63 / 255}) {
    EXPECT_DEATH((void)hexString(UIColor(0, component, 0, 1)), "not finite, or too large");
  }
}

TEST(ColorUtilityTest, RatiosWeightTheReceiver) {
  const UIColor black(0, 0, 0, 1);
  const UIColor white(1, 1, 1, 0);
  EXPECT_EQ(interpolateWithColor(black, white, 0.25), UIColor(0.75, 0.75, 0.75, 0.25));
  EXPECT_EQ(KvColor(black).interpolateWithColorWithColor(KvColor(white), 0.25).red, 0.25)
      << "the other way round, on purpose";
  EXPECT_EQ(interpolateWithColor(black, std::nullopt, 0.25), std::nullopt);

  // At the ends a dynamic colour stays what it is; in between it is no longer.
  const UIColor dynamic = UIColor::withDynamicProvider([=](auto) { return white; });
  for (const double ratio : {0.0, -3.0, epsilon}) {
    EXPECT_EQ(interpolateWithColor(black, dynamic, ratio), dynamic);
  }
  for (const double ratio : {1.0, 3.0, 1 - epsilon}) {
    EXPECT_EQ(interpolateWithColor(dynamic, black, ratio), dynamic);
  }
  EXPECT_EQ(interpolateWithColor(dynamic, black, 0.5), UIColor(0.5, 0.5, 0.5, 0.5));
  EXPECT_EQ(interpolateWithColor(dynamic, white, 2 * epsilon), white);

  EXPECT_EQ(interpolateColor({1, 0, 0.5, 1}, {0, 1, 0.5, 0}, 3), (RGBA{3, -2, 0.5, 3}))
      << "neither clamped nor cut short";
}

TEST(ColorUtilityTest, Arithmetic) {
  const UIColor color(0.25, 0.5, 1, 0.125);
  EXPECT_EQ(colorInverted(color), UIColor(0.75, 0.5, 0, 0.125));
  EXPECT_EQ(addIntensity(color, 0.5), UIColor(0.75, 1, 1, 0.125));
  EXPECT_EQ(addIntensity(UIColor(0.25, 0.5, 1, 7), -0.5), UIColor(0, 0, 0.5, 7)) << "alpha is kept";
  EXPECT_EQ(multiplySaturationBy(UIColor(0.5, 0.5, 0.5, 7), 3), UIColor(0.5, 0.5, 0.5, 7));
  EXPECT_EQ(hslToUIColor({0, 1, 0.5}, 7), UIColor(1, 0, 0, 7));
  EXPECT_EQ(kvColor(UIColor(2, -1, 0.5, 3)).identifier(), "100.0.50.100");
}

TEST(ColorUtilityTest, AlphaPredicatesHaveTheirOwnBounds) {
  const auto ofAlpha = [](double alpha) { return UIColor(0, 0, 0, alpha); };
  EXPECT_TRUE(isClearColor(ofAlpha(epsilon)));
  EXPECT_FALSE(isClearColor(ofAlpha(2 * epsilon)));
  EXPECT_FALSE(isClearColor(ofAlpha(nan)));
  // The double below 1 is opaque to KvColor alone.
  const UIColor nearly = ofAlpha(1 - epsilon / 2);
  EXPECT_FALSE(isOpaque(nearly));
  EXPECT_TRUE(KvColor(nearly).isOpaque());
  EXPECT_TRUE(isOpaque(ofAlpha(1)));
  EXPECT_FALSE(isOpaque(ofAlpha(nan)));
}

TEST(ColorUtilityTest, RandomColoursNeverReachOne) {
  std::set<double> seen;
  for (int i = 0; i < 20'000; ++i) {
    const RGBA color = randomColor(0.5).getRedGreenBlueAlpha();
    for (const double component : {color.red, color.green, color.blue}) seen.insert(component);
    EXPECT_EQ(color.alpha, 0.5);
  }
  // All of 0/255 to 254/255: 60,000 draws miss one with a chance of 1e-99.
  EXPECT_EQ(seen.size(), 255);
  EXPECT_EQ(*seen.begin(), 0);
  EXPECT_EQ(*seen.rbegin(), 254 / 255.0);
  EXPECT_EQ(randomColor().getRedGreenBlueAlpha().alpha, 1);
}

}  // namespace
}  // namespace FrameworkUtility
