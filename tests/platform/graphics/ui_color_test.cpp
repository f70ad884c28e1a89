#include <framework_utility/platform/graphics/ui_color.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

namespace FrameworkUtility {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr UITraitCollection light{UIUserInterfaceStyle::light};
constexpr UITraitCollection dark{UIUserInterfaceStyle::dark};

TEST(UIColorTest, HueSaturationBrightness) {
  struct Case {
    double hue, saturation, brightness;
    RGBA expected;
  };
  for (const Case& c :
       {Case{0, 1, 1, {1, 0, 0, 0.5}}, Case{1.0 / 6, 1, 1, {1, 1, 0, 0.5}},
        Case{0.25, 1, 1, {0.5, 1, 0, 0.5}}, Case{0.5, 1, 1, {0, 1, 1, 0.5}},
        Case{0.75, 1, 0.5, {0.25, 0, 0.5, 0.5}}, Case{11.0 / 12, 1, 1, {1, 0, 0.5, 0.5}},
        Case{1, 1, 1, {1, 0, 0, 0.5}}, Case{7, 1, 1, {1, 0, 0, 0.5}},
        Case{-1, 2, 3, {1, 0, 0, 0.5}}, Case{0.3, 0, 0.25, {0.25, 0.25, 0.25, 0.5}}}) {
    SCOPED_TRACE(::testing::Message() << c.hue << ' ' << c.saturation << ' ' << c.brightness);
    const RGBA found = UIColor::withHueSaturationBrightness(c.hue, c.saturation, c.brightness, 0.5)
                           .getRedGreenBlueAlpha();
    EXPECT_NEAR(found.red, c.expected.red, 1e-15);
    EXPECT_NEAR(found.green, c.expected.green, 1e-15);
    EXPECT_NEAR(found.blue, c.expected.blue, 1e-15);
    EXPECT_EQ(found.alpha, 0.5);
  }
}

TEST(UIColorTest, NaNNeverBecomesAColour) {
  const RGBA hue = UIColor::withHueSaturationBrightness(nan, 1, 1, 1).getRedGreenBlueAlpha();
  const RGBA rest = UIColor::withHueSaturationBrightness(0, 0, nan, nan).getRedGreenBlueAlpha();
  for (const double component :
       {hue.red, hue.green, hue.blue, rest.red, rest.green, rest.blue, rest.alpha}) {
    EXPECT_TRUE(std::isnan(component));
  }
}

TEST(UIColorTest, AProviderChoosesForAnAppearance) {
  const UIColor plain(0.1, 0.2, 0.3, 1);
  const UIColor night(0.9, 0.8, 0.7, 1);
  const UIColor dynamic = UIColor::withDynamicProvider([=](const UITraitCollection& traits) {
    return traits.userInterfaceStyle == UIUserInterfaceStyle::dark ? night : plain;
  });
  const UIColor nested =
      UIColor::withDynamicProvider([=](const UITraitCollection&) { return dynamic; });
  for (const UIColor& color : {dynamic, nested}) {
    EXPECT_EQ(color.resolvedColorWithTraitCollection(dark), night);
    EXPECT_EQ(color.resolvedColorWithTraitCollection(light), plain);
    EXPECT_EQ(color.getRedGreenBlueAlpha(), plain.getRedGreenBlueAlpha());
    EXPECT_NE(color, plain);
  }
  EXPECT_EQ(UIColor(1.5, -0.2, 0, 3).getRedGreenBlueAlpha(), (RGBA{1.5, -0.2, 0, 3}));
  EXPECT_EQ(plain, UIColor(0.1, 0.2, 0.3, 1));
  EXPECT_EQ(dynamic, UIColor(dynamic));
  EXPECT_NE(dynamic, nested);
}

TEST(UIColorDeathTest, StopsWhereNoColourCanBe) {
  EXPECT_DEATH((void)UIColor::withDynamicProvider(nullptr), "needs a provider");
  const auto self = std::make_shared<UIColor>(0, 0, 0, 1);
  *self = UIColor::withDynamicProvider(
      [weak = std::weak_ptr(self)](const UITraitCollection&) { return *weak.lock(); });
  EXPECT_DEATH((void)self->getRedGreenBlueAlpha(), "without an end");
}

}  // namespace
}  // namespace FrameworkUtility
