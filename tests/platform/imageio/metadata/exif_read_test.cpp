#include <tests/platform/imageio/metadata/exif_block.h>

#include <gtest/gtest.h>

namespace FrameworkUtility::testing {
namespace {

using enum TiffType;

constexpr std::endian orders[] = {std::endian::big, std::endian::little};

/// What a directory with these records alone reads as.
Dictionary read(std::string_view dictionary, const std::vector<TestEntry>& records,
                std::endian order = std::endian::big) {
  TestBlock block{.order = order};
  (dictionary == "{TIFF}"   ? block.image
   : dictionary == "{Exif}" ? block.exif
                            : block.gps) = records;
  return in(readExif(block.bytes()), dictionary);
}

TEST(ExifReadTest, ARecordReadsAsWhatItMeans) {
  const struct {
    const char* what;
    const char* dictionary;
    std::vector<TestEntry> records;
    Dictionary expected;
  } cases[] = {
      {"a text ends at its NUL", "{TIFF}", {{0x131, "Photo\0shop"s}}, {{"Software", "Photo"}}},
      {"and before its padding", "{TIFF}", {{0x131, "Padded   "}}, {{"Software", "Padded"}}},
      {"an empty text", "{TIFF}", {{0x131, ""}}, {{"Software", ""}}},
      {"UTF-8", "{TIFF}", {{0x131, "Caf\xC3\xA9"}}, {{"Software", "Caf\xC3\xA9"}}},
      {"Latin-1", "{TIFF}", {{0x131, "\xA9 2024"}}, {{"Software", "\xC2\xA9 2024"}}},
      {"no UTF-8", "{TIFF}", {{0x131, "\xED\xA0"}}, {{"Software", "\xC3\xAD\xC2\xA0"}}},
      {"the first counts", "{TIFF}", {{0x131, "1"}, {0x131, "2"}}, {{"Software", "1"}}},
      {"a number for a text", "{TIFF}", {{0x131, shorts(7)}}, {}},
      {"an endless fraction", "{TIFF}", {{0x11A, rationals(72, 0)}}, {}},
      {"no list", "{Exif}", {{0x8827, shorts()}}, {}},
      {"a fraction", "{Exif}", {{0x829A, rationals(1, 120)}}, {{"ExposureTime", 1 / 120.0}}},
      {"bytes",
       "{Exif}",
       {{0x9101, opaque("\1\2\3\0"sv)}},
       {{"ComponentsConfiguration", Value(Array{1, 2, 3, 0})}}},
      {"a list",
       "{Exif}",
       {{0x8827, shorts(64, 65535)}},
       {{"ISOSpeedRatings", Value(Array{64, 65535})}}},
      {"a part unknown", "{Exif}", {{0xA432, rationals(24, 1, 70, 1, 0, 0, 0, 0)}}, {}},
      {"a release",
       "{Exif}",
       {{0x9000, opaque("1021")}},
       {{"ExifVersion", Value(Array{10, 2, 1})}}},
      {"no release", "{Exif}", {{0x9000, opaque("0210")}}, {{"ExifVersion", Value(Array{2, 1})}}},
      {"letters", "{Exif}", {{0x9000, opaque("02a0")}}, {}},
      {"five digits", "{Exif}", {{0x9000, opaque("02100")}}, {}},
      {"degrees alone", "{GPS}", {{2, rationals(485, 10)}}, {{"Latitude", 48.5}}},
      {"no seconds", "{GPS}", {{4, rationals(2, 1, 2100, 100, 0, 0)}}, {{"Longitude", 2.35}}},
      {"no degrees", "{GPS}", {{4, rationals(0, 0, 1, 1, 1, 1)}}, {}},
      {"below 0", "{GPS}", {{4, numbers(signedRational, -1, 1, 1, 1, 1, 1)}}, {}},
      {"degrees as text", "{GPS}", {{2, "52,00000,50,00000"}}, {{"Latitude", "52,00000,50,00000"}}},
      {"a time as text", "{GPS}", {{7, "17,00,00"}}, {{"TimeStamp", "17,00,00"}}},
      {"thirds",
       "{GPS}",
       {{7, rationals(99, 1, 2, 1, 1, 3)}},
       {{"TimeStamp", "99:02:00.333333333"}}},
      {"parts of a minute", "{GPS}", {{7, rationals(1, 1, 5, 2, 0, 1)}}, {}},
      {"a hundred hours", "{GPS}", {{7, rationals(100, 1, 2, 1, 0, 1)}}, {}},
      {"no hour", "{GPS}", {{7, rationals(1, 0, 2, 1, 0, 1)}}, {}},
  };
  for (const auto& [what, dictionary, records, expected] : cases) {
    for (const std::endian order : orders) {
      EXPECT_EQ(read(dictionary, records, order), expected) << what;
    }
  }
}

TEST(ExifReadTest, ABlockGivesEachDirectoryAndTheTopLevel) {
  for (const std::endian order : orders) {
    const ByteVector block = photograph(order).bytes();
    const Dictionary properties = readExif(block);
    const Value lens(Array{2.6, 2.6, 1.8, 1.8});
    EXPECT_EQ(in(properties, "{TIFF}").size(), 6);
    EXPECT_EQ(*in(properties, "{Exif}").find("LensSpecification"), lens);
    EXPECT_EQ(in(properties, "{ExifAux}"), (Dictionary{{"LensInfo", lens}}));
    EXPECT_EQ(*in(properties, "{GPS}").find("Latitude"), Value(48 + (51 * 60 + 29.99) / 3600));
    EXPECT_EQ(*properties.find("Orientation"), Value(6));
    EXPECT_EQ(*properties.find("DPIHeight"), Value(72));
    EXPECT_EQ(detail::readExifOrientation(block), Number(6));
  }
}

TEST(ExifReadTest, CommentsBehindEachPrefix) {
  const std::string bigEndian = "\0H\0\xE9\0l\0o\x20\xAC\xD8\x3D\xDE\x00\0 \0\0"s;
  const std::string littleEndian = "H\0\xE9\0l\0o\0\xAC\x20\x3D\xD8\x00\xDE \0\0\0"s;
  const std::string text = "H\xC3\xA9lo\xE2\x82\xAC\xF0\x9F\x98\x80", bad = "\xEF\xBF\xBD";
  const std::pair<std::string, Value> cases[] = {
      {"ASCII\0\0\0plain\0rest"s, "plain"},
      {"\0\0\0\0\0\0\0\0undefined  "s, "undefined"},
      {"no prefix", "no prefix"},
      {"short", "short"},
      {"UNICODE\0"s + bigEndian, text},
      {"UNICODE\0"s + littleEndian, text},
      {"UNICODE\0\xFF\xFE"s + littleEndian, text},
      {"UNICODE\0\xFE\xFF\x4E\0"s, "\xE4\xB8\x80"},  // "N" if it were not for the mark
      {"UNICODE\0"s, ""},
      {"UNICODE\0\0a\xD8\0\0b"s, "a" + bad + "b"},
      {"JIS\0\0\0\0\0plain"s, "plain"},
      {"JIS\0\0\0\0\0\x1B$B$\"\x1B(B"s, Value()}};
  for (const std::endian order : orders) {
    for (const auto& [stored, comment] : cases) {
      SCOPED_TRACE(stored);
      const Dictionary expected{{"UserComment", comment}};
      EXPECT_EQ(read("{Exif}", {{0x9286, opaque(stored)}}, order),
                comment.isNull() ? Dictionary() : expected);
    }
  }
}

TEST(ExifReadTest, ResolutionsAreInInchesAtTheTopLevel) {
  for (const auto& [unit, dpi] : {std::pair{0, 300.0}, {2, 300.0}, {3, 762.0}, {1, 0.0}}) {
    TestBlock block;
    block.image = {{0x11A, rationals(300, 1)}};
    if (unit != 0) block.image.push_back({0x128, shorts(unit)});
    const Dictionary properties = readExif(block.bytes());
    const Number* width = properties.get<Number>("DPIWidth");
    EXPECT_EQ(width ? width->doubleValue() : 0, dpi) << unit;
    EXPECT_EQ(detail::tiffDotsPerInch(properties, "XResolution"), dpi);
  }
}

TEST(ExifReadTest, ATruncatedBlockGivesNothingElseThanTheWholeOne) {
  for (const std::endian order : orders) {
    const ByteVector whole = photograph(order).bytes();
    const Dictionary expected = readExif(whole);
    for (std::size_t size = 0; size < whole.size(); ++size) {
      // On the heap, so that a sanitizer sees each read past the end.
      const ByteVector cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
      for (const auto& [key, value] : readExif(cut)) {
        if (!value.as<Dictionary>()) continue;
        for (const auto& [name, entry] : *value.as<Dictionary>()) {
          const Value* wanted = in(expected, *key.text()).find(name);
          ASSERT_TRUE(wanted && *wanted == entry) << size << *name.text();
        }
      }
    }
  }
}

TEST(ExifReadTest, ADirectoryOfRecordsThatAllLeadToItselfEnds) {
  TestBlock block;
  for (int i = 0; i < 65535; ++i) {
    block.image.push_back({static_cast<std::uint16_t>(i % 2 == 0 ? 0x8769 : 0x8825), longs(8)});
  }
  const ByteVector bytes = block.bytes();
  EXPECT_TRUE(readExif(bytes).empty());
  EXPECT_TRUE(detail::mergeExif(bytes, {}, {}).empty());
}

}  // namespace
}  // namespace FrameworkUtility::testing
