#include <framework_utility/platform/graphics/color_space.h>
#include <framework_utility/platform/graphics/ui_color.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string_view>

namespace FrameworkUtility {
namespace {

using testing::bytesOf;
using testing::dataOf;

std::vector<std::uint8_t> profileOf(std::string_view name) {
  return bytesOf(*CGColorSpace::createWithName(name)->iccData());
}

/// A profile with other bytes at a place.
Data changed(std::vector<std::uint8_t> profile, std::size_t offset, std::string_view bytes) {
  std::copy(bytes.begin(), bytes.end(), profile.begin() + static_cast<std::ptrdiff_t>(offset));
  return dataOf(profile);
}

TEST(ColorSpaceTest, NamedSpacesAreWhatTheirProfilesSay) {
  struct Case {
    std::string_view name;
    CGColorSpaceModel model;
    std::size_t components;
    const char* profileName;
  };
  for (const Case& c : {Case{kCGColorSpaceSRGB, CGColorSpaceModel::rgb, 3, "sRGB IEC61966-2.1"},
                        Case{kCGColorSpaceDisplayP3, CGColorSpaceModel::rgb, 3, "Display P3"},
                        Case{kCGColorSpaceGenericGray, CGColorSpaceModel::monochrome, 1,
                             "Generic Gray Gamma 2.2 Profile"}}) {
    SCOPED_TRACE(c.name);
    const auto space = CGColorSpace::createWithName(c.name);
    ASSERT_TRUE(space && space->iccData());
    const auto read = CGColorSpace::createWithICCData(*space->iccData());
    ASSERT_TRUE(read);
    EXPECT_EQ(space->name(), c.name);
    EXPECT_EQ(read->name(), std::nullopt);
    for (const CGColorSpace& either : {*space, *read}) {
      EXPECT_EQ(either.model(), c.model);
      EXPECT_EQ(either.numberOfComponents(), c.components);
      EXPECT_EQ(either.profileName(), c.profileName);
    }
    EXPECT_EQ(*read, *space);
  }
  EXPECT_FALSE(CGColorSpace::createWithName("kCGColorSpaceUnheardOf"));
}

TEST(ColorSpaceTest, DeviceSpacesAreTheNamedOnes) {
  EXPECT_EQ(CGColorSpace::createDeviceRGB(), CGColorSpace::createWithName(kCGColorSpaceSRGB));
  EXPECT_EQ(CGColorSpace::createDeviceGray(),
            CGColorSpace::createWithName(kCGColorSpaceGenericGray));
  EXPECT_EQ(CGColorSpace::createDeviceCMYK(),
            CGColorSpace::createWithName(kCGColorSpaceGenericCMYK));
  EXPECT_EQ(CGColorSpace::createDeviceCMYK().iccData(), std::nullopt);
  EXPECT_NE(CGColorSpace::createDeviceRGB(), CGColorSpace::createWithName(kCGColorSpaceDisplayP3));
}

TEST(ColorSpaceTest, KeepsAProfileByteForByte) {
  auto bytes = profileOf(kCGColorSpaceDisplayP3);
  const std::vector<std::uint8_t> date(bytes.begin() + 24, bytes.begin() + 36);
  EXPECT_EQ(date, (std::vector<std::uint8_t>{7, 232, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0}));  // not now
  bytes.insert(bytes.end(), {1, 2, 3, 4});  // behind the end that the header states
  const auto space = CGColorSpace::createWithICCData(dataOf(bytes));
  ASSERT_TRUE(space);
  EXPECT_EQ(bytesOf(*space->iccData()), bytes);
}

TEST(ColorSpaceTest, NamesAreUtf8) {
  const auto bytes = profileOf(kCGColorSpaceDisplayP3);
  constexpr std::string_view name("\0D\0i\0s", 6);
  const auto place = std::search(bytes.begin(), bytes.end(), name.begin(), name.end());
  // "é", "€", two surrogates for U+1F3A8, "A", end
  const auto space = CGColorSpace::createWithICCData(
      changed(bytes, static_cast<std::size_t>(place - bytes.begin()),
              {"\x00\xE9\x20\xAC\xD8\x3C\xDF\xA8\0A\0\0", 12}));
  ASSERT_TRUE(space);
  EXPECT_EQ(space->profileName(), "\u00E9\u20AC\U0001F3A8A");
}

TEST(ColorSpaceTest, RefusesWhatIsNoProfileOfPixels) {
  const auto good = profileOf(kCGColorSpaceSRGB);
  for (const Data& bad :
       {Data(), dataOf(testing::noise(4000)), changed(good, 12, "link"), changed(good, 12, "nmcl"),
        changed(good, 16, "XYZ "), changed(good, 16, "CMYK"),  // no table for four inks
        changed(good, 36, "none")}) {
    EXPECT_FALSE(CGColorSpace::createWithICCData(bad));
  }
}

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

TEST(UIColorTest, AProviderChoosesForAnAppearance) {
  const UIColor plain(0.1, 0.2, 0.3, 1);
  const UIColor night(0.9, 0.8, 0.7, 1);
  const UIColor dynamic = UIColor::withDynamicProvider([=](const UITraitCollection& traits) {
    return traits.userInterfaceStyle == UIUserInterfaceStyle::dark ? night : plain;
  });
  const UIColor nested =
      UIColor::withDynamicProvider([=](const UITraitCollection&) { return dynamic; });
  for (const UIColor& color : {dynamic, nested}) {
    EXPECT_EQ(color.resolvedColorWithTraitCollection({UIUserInterfaceStyle::dark}), night);
    EXPECT_EQ(color.resolvedColorWithTraitCollection({UIUserInterfaceStyle::light}), plain);
    EXPECT_EQ(color.getRedGreenBlueAlpha(), plain.getRedGreenBlueAlpha());
    EXPECT_NE(color, plain);
  }
  EXPECT_EQ(UIColor(1.5, -0.2, 0, 3).getRedGreenBlueAlpha(), (RGBA{1.5, -0.2, 0, 3}));
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
