#include <tests/platform/imageio/metadata/exif_block.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace FrameworkUtility::testing {
namespace {

using namespace std::string_literals;
using enum TiffType;

constexpr std::endian orders[] = {std::endian::big, std::endian::little};

TEST(ExifReadTest, GivesEveryShapeInBothByteOrders) {
  for (const std::endian order : orders) {
    const Dictionary properties = readExif(photograph(order).bytes());
    EXPECT_EQ(
        properties,
        (Dictionary{{"Orientation", 6},
                    {"DPIWidth", 72},
                    {"DPIHeight", 72},
                    {"{TIFF}", Dictionary{{"Make", "Acme"},
                                          {"Model", "Pocket 1"},
                                          {"Orientation", 6},
                                          {"XResolution", 72},
                                          {"YResolution", 72},
                                          {"ResolutionUnit", 2},
                                          {"Software", "17.4.1"},
                                          {"DateTime", "2024:05:06 07:08:09"}}},
                    {"{Exif}", Dictionary{{"ExposureTime", 1 / 120.0},
                                          {"FNumber", 1.8},
                                          {"ISOSpeedRatings", Value(Array{64})},
                                          {"ExifVersion", Value(Array{2, 3, 2})},
                                          {"DateTimeOriginal", "2024:05:06 07:08:09"},
                                          {"ComponentsConfiguration", Value(Array{1, 2, 3, 0})},
                                          {"ExposureBiasValue", -1 / 3.0},
                                          {"UserComment", "Hello"},
                                          {"SubsecTime", "123"},
                                          {"ColorSpace", 65535},
                                          {"PixelXDimension", 4032},
                                          {"PixelYDimension", 3024},
                                          {"SceneType", 1},
                                          {"LensSpecification", Value(Array{2.6, 2.6, 1.8, 1.8})},
                                          {"LensModel", "Lens 1"}}},
                    {"{ExifAux}", Dictionary{{"LensInfo", Value(Array{2.6, 2.6, 1.8, 1.8})},
                                             {"LensModel", "Lens 1"}}},
                    {"{GPS}", Dictionary{{"GPSVersion", Value(Array{2, 3, 0, 0})},
                                         {"LatitudeRef", "N"},
                                         {"Latitude", 48 + (51 * 60 + 29.99) / 3600},
                                         {"LongitudeRef", "W"},
                                         {"Longitude", 2.35},
                                         {"AltitudeRef", 1},
                                         {"Altitude", 35.5},
                                         {"TimeStamp", "01:02:03.5"},
                                         {"DateStamp", "2024:05:06"}}}}));
  }
}

// The value of one record under the key that it should have.
const Value* readOne(Dictionary& properties, const TestBlock& block, std::string_view dictionary,
                     std::string_view key) {
  properties = readExif(block.bytes());
  return in(properties, dictionary).find(key);
}

TEST(ExifReadTest, TextEndsAtItsNulAndIsUtf8) {
  for (const auto& [stored, text] : {std::pair{"Photo\0shop"s, "Photo"s},
                                     {"Padded   "s, "Padded"s},
                                     {"\0"s, ""s},
                                     {"Caf\xC3\xA9"s, "Caf\xC3\xA9"s},
                                     {"\xA9 2024"s, "\xC2\xA9 2024"s},
                                     {"\xED\xA0\x80"s, "\xC3\xAD\xC2\xA0\xC2\x80"s}}) {
    TestBlock block;
    block.image = {block.text(0x131, stored)};
    Dictionary properties;
    const Value* value = readOne(properties, block, "{TIFF}", "Software");
    ASSERT_TRUE(value);
    EXPECT_EQ(*value, Value(text));
  }
}

TEST(ExifReadTest, CommentsBehindEachPrefix) {
  const std::string bigEndian("\0H\0\xE9\0l\0o\x20\xAC\xD8\x3D\xDE\x00\0 \0\0", 18);
  const std::string littleEndian("H\0\xE9\0l\0o\0\xAC\x20\x3D\xD8\x00\xDE \0\0\0", 18);
  const std::string text = "H\xC3\xA9lo\xE2\x82\xAC\xF0\x9F\x98\x80";
  struct Case {
    std::string stored;
    std::optional<std::string> text;
  };
  for (const std::endian order : orders) {
    for (const Case& c :
         {Case{"ASCII\0\0\0plain\0rest"s, "plain"},
          Case{"\0\0\0\0\0\0\0\0undefined  "s, "undefined"}, Case{"no prefix"s, "no prefix"},
          Case{"short"s, "short"}, Case{"UNICODE\0"s + bigEndian, text},
          Case{"UNICODE\0"s + littleEndian, text}, Case{"UNICODE\0\xFF\xFE"s + littleEndian, text},
          Case{"UNICODE\0"s, ""},
          Case{"UNICODE\0\0a\xD8\0\0b"s,
               "a\xEF\xBF\xBD"
               "b"},
          Case{"JIS\0\0\0\0\0plain"s, "plain"},
          Case{"JIS\0\0\0\0\0\x1B$B$\"\x1B(B"s, std::nullopt}}) {
      SCOPED_TRACE(c.stored);
      TestBlock block{.order = order, .image = {}, .exif = {}, .gps = {}, .interop = {}};
      block.exif = {block.raw(0x9286, undefined, c.stored)};
      Dictionary properties;
      const Value* value = readOne(properties, block, "{Exif}", "UserComment");
      EXPECT_EQ(value ? std::optional(*value) : std::nullopt,
                c.text ? std::optional(Value(*c.text)) : std::nullopt);
    }
  }
}

TEST(ExifReadTest, LeavesOutWhatIsNoValue) {
  TestBlock block;
  block.image = {block.numbers(0x11A, unsignedRational, {72, 0}),
                 block.numbers(0x131, unsignedShort, {7})};
  block.exif = {block.numbers(0x829D, unsignedRational, {0, 0}),
                block.raw(0x9000, undefined, "02a0"),
                block.numbers(0xA432, unsignedRational, {24, 1, 70, 1, 0, 0, 0, 0}),
                {0x8827, unsignedShort, 0, {}}};
  EXPECT_TRUE(readExif(block.bytes()).empty());
}

TEST(ExifReadTest, NumbersStoredAsTextStayText) {
  TestBlock block;
  block.gps = {block.text(1, "N"), block.text(2, "52,00000,50,00000"), block.text(7, "17,00,00")};
  EXPECT_EQ(in(readExif(block.bytes()), "{GPS}"), (Dictionary{{"LatitudeRef", "N"},
                                                              {"Latitude", "52,00000,50,00000"},
                                                              {"TimeStamp", "17,00,00"}}));
}

TEST(ExifReadTest, CoordinatesMayLackMinutesAndSeconds) {
  TestBlock block;
  block.gps = {block.numbers(2, unsignedRational, {485, 10}),
               block.numbers(4, unsignedRational, {2, 1, 2100, 100, 0, 0})};
  EXPECT_EQ(in(readExif(block.bytes()), "{GPS}"),
            (Dictionary{{"Latitude", 48.5}, {"Longitude", 2.35}}));
}

TEST(ExifReadTest, ResolutionsAreInInchesAtTheTopLevel) {
  for (const auto& [unit, dpi] : {std::pair{0, 300.0}, {2, 300.0}, {3, 762.0}, {1, 0.0}}) {
    TestBlock block;
    block.image = {block.numbers(0x11A, unsignedRational, {300, 1})};
    if (unit != 0) block.image.push_back(block.numbers(0x128, unsignedShort, {unit}));
    const Dictionary properties = readExif(block.bytes());
    const Number* width = properties.get<Number>("DPIWidth");
    EXPECT_EQ(width ? width->doubleValue() : 0, dpi) << unit;
  }
}

TEST(ExifReadTest, TheFirstRecordOfATagCounts) {
  TestBlock block;
  block.image = {block.text(0x131, "first"), block.text(0x131, "second")};
  EXPECT_EQ(in(readExif(block.bytes()), "{TIFF}"), (Dictionary{{"Software", "first"}}));
}

TEST(ExifReadTest, ATruncatedBlockGivesNothingElseThanTheWholeOne) {
  for (const std::endian order : orders) {
    const Bytes whole = photograph(order).bytes();
    const Dictionary expected = readExif(whole);
    for (std::size_t size = 0; size < whole.size(); ++size) {
      // On the heap, so that a sanitizer sees each read past the end.
      const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
      for (const auto& [key, value] : readExif(cut)) {
        const Dictionary* dictionary = value.as<Dictionary>();
        if (!dictionary) continue;
        for (const auto& [name, entry] : *dictionary) {
          const Value* wanted = expected.get<Dictionary>(key)->find(name);
          ASSERT_TRUE(wanted && *wanted == entry) << size << *name.text();
        }
      }
    }
  }
}

TEST(ExifReadTest, EndsForEveryPointer) {
  // A directory of 65,535 records that all lead to itself.
  TestBlock block;
  for (int i = 0; i < 65535; ++i) {
    block.image.push_back(block.numbers(i % 2 == 0 ? 0x8769 : 0x8825, unsignedLong, {8}));
  }
  Bytes bytes = block.bytes();
  EXPECT_TRUE(readExif(bytes).empty());
  EXPECT_TRUE(detail::mergeExif(bytes, {}, {}).empty());

  // Every offset of a small block in turn, past the end and backwards included.
  const Bytes whole = photograph(std::endian::big).bytes();
  for (std::size_t at = 4; at + 4 <= whole.size(); ++at) {
    for (const std::uint32_t offset :
         {0U, 8U, static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(whole.size() - 1),
          0x7FFFFFFFU, 0xFFFFFFFFU}) {
      bytes = whole;
      detail::storeTiffInteger(bytes.data() + at, offset, 4, std::endian::big);
      const Dictionary properties = readExif(bytes);
      const Bytes merged = detail::mergeExif(bytes, properties, {});
      ASSERT_EQ(readExif(merged), properties) << at << ' ' << offset;
    }
  }
}

}  // namespace
}  // namespace FrameworkUtility::testing
