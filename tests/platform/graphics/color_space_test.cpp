#include <framework_utility/platform/graphics/color_space.h>

#include <tests/platform/graphics/pictures.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace FrameworkUtility {
namespace {

using testing::bytesOf;
using testing::dataOf;

void setBig32(std::vector<std::uint8_t>& bytes, std::size_t offset, std::uint32_t value) {
  for (std::size_t i = 0; i < 4; ++i) {
    bytes[offset + i] = static_cast<std::uint8_t>(value >> (24 - 8 * i));
  }
}

std::uint32_t big32(const std::vector<std::uint8_t>& bytes, std::size_t offset) {
  return std::uint32_t{bytes[offset]} << 24 | std::uint32_t{bytes[offset + 1]} << 16 |
         std::uint32_t{bytes[offset + 2]} << 8 | bytes[offset + 3];
}

/// Where the tag's data begin.
std::size_t tagOffset(const std::vector<std::uint8_t>& profile, const char* tag) {
  for (std::size_t entry = 132; entry < 132 + 12 * big32(profile, 128); entry += 12) {
    if (std::memcmp(&profile[entry], tag, 4) == 0) return big32(profile, entry + 4);
  }
  ADD_FAILURE() << "no tag " << tag;
  return 0;
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
  const CGColorSpace cmyk = CGColorSpace::createDeviceCMYK();
  EXPECT_EQ(cmyk, CGColorSpace::createWithName(kCGColorSpaceGenericCMYK));
  EXPECT_EQ(cmyk.iccData(), std::nullopt);
  EXPECT_EQ(cmyk.profileName(), std::nullopt);
  EXPECT_NE(CGColorSpace::createDeviceRGB(), CGColorSpace::createWithName(kCGColorSpaceDisplayP3));
}

TEST(ColorSpaceTest, KeepsAProfileByteForByte) {
  auto bytes = bytesOf(*CGColorSpace::createWithName(kCGColorSpaceDisplayP3)->iccData());
  bytes.insert(bytes.end(), {1, 2, 3, 4});  // behind the end that the header states
  const auto space = CGColorSpace::createWithICCData(dataOf(bytes));
  ASSERT_TRUE(space);
  EXPECT_EQ(bytesOf(*space->iccData()), bytes);
}

TEST(ColorSpaceTest, NamesAreUtf8) {
  auto bytes = bytesOf(*CGColorSpace::createWithName(kCGColorSpaceDisplayP3)->iccData());
  const std::size_t text = tagOffset(bytes, "desc") + 28;
  // "é", "€", two surrogates for U+1F3A8, "A", end
  const std::vector<std::uint8_t> units{0x00, 0xE9, 0x20, 0xAC, 0xD8, 0x3C,
                                        0xDF, 0xA8, 0x00, 0x41, 0x00, 0x00};
  std::copy(units.begin(), units.end(), bytes.begin() + static_cast<std::ptrdiff_t>(text));
  const auto space = CGColorSpace::createWithICCData(dataOf(bytes));
  ASSERT_TRUE(space);
  EXPECT_EQ(space->profileName(), "\u00E9\u20AC\U0001F3A8A");
}

TEST(ColorSpaceTest, RefusesWhatIsNoProfileOfPixels) {
  const auto good = bytesOf(*CGColorSpace::createWithName(kCGColorSpaceSRGB)->iccData());
  const auto with = [&](std::size_t offset, const char* signature) {
    auto bytes = good;
    std::memcpy(&bytes[offset], signature, 4);
    return dataOf(bytes);
  };
  EXPECT_FALSE(CGColorSpace::createWithICCData({}));
  EXPECT_FALSE(CGColorSpace::createWithICCData(dataOf(testing::noise(4000))));
  EXPECT_FALSE(CGColorSpace::createWithICCData(with(12, "link")));
  EXPECT_FALSE(CGColorSpace::createWithICCData(with(12, "nmcl")));
  EXPECT_FALSE(CGColorSpace::createWithICCData(with(16, "XYZ ")));
  EXPECT_FALSE(CGColorSpace::createWithICCData(with(16, "CMYK")));  // no table for four inks
  EXPECT_FALSE(CGColorSpace::createWithICCData(with(36, "none")));
}

TEST(ColorSpaceTest, SurvivesDamagedProfiles) {
  const auto good = bytesOf(*CGColorSpace::createWithName(kCGColorSpaceSRGB)->iccData());
  for (std::size_t length = 0; length < good.size(); ++length) {
    const auto space = CGColorSpace::createWithICCData(
        dataOf({good.begin(), good.begin() + static_cast<std::ptrdiff_t>(length)}));
    EXPECT_TRUE(!space || space->numberOfComponents() == 3);
  }
  // Counts, offsets and lengths of every size in every place.
  for (std::size_t offset = 0; offset + 4 <= good.size(); offset += 4) {
    for (const std::uint32_t value : {0x0FFFFFFFU, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
      auto bytes = good;
      setBig32(bytes, offset, value);
      const auto space = CGColorSpace::createWithICCData(dataOf(bytes));
      EXPECT_TRUE(!space || space->model() == CGColorSpaceModel::rgb);
    }
  }
}

}  // namespace
}  // namespace FrameworkUtility
