#include <tests/platform/imageio/metadata/exif_block.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <random>
#include <span>
#include <string>

namespace FrameworkUtility::testing {
namespace {

using detail::mergeExif;
using enum TiffType;

constexpr std::endian orders[] = {std::endian::big, std::endian::little};
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

bool contains(const Bytes& block, std::string_view text) {
  const Bytes part = bytesOf(text);
  return std::search(block.begin(), block.end(), part.begin(), part.end()) != block.end();
}

// A note of another maker, which this library cannot read.
const std::string foreignNote = "Acme\1\2 a note that holds absolute offsets";

TEST(ExifWriteTest, WithoutAChangeOnlyTheThumbnailGoes) {
  for (const std::endian order : orders) {
    TestBlock photo = photograph(order, foreignNote);
    const Bytes block = photo.bytes();
    const Bytes merged = mergeExif(block, readExif(block), {});
    EXPECT_FALSE(contains(merged, "old picture"));
    photo.thumbnail = {};
    EXPECT_EQ(merged, photo.bytes());
  }
}

// The thumbnail's directory: its records, and what they lead to.
struct Second {
  std::uint32_t directory;
  std::size_t record(std::size_t index) const { return directory + 2 + 12 * index; }
};
Second secondOf(const Bytes& block) {
  const auto reader = TiffReader::open(block);
  return {reader->nextDirectory(reader->firstDirectory())};
}

TEST(ExifWriteTest, OnlyWhatTheThumbnailOwnsIsZeroed) {
  // Directories of a maker's note may stand anywhere, so nothing is free because nobody is known
  // to need it.
  const auto store = [](Bytes& block, std::size_t at, std::uint64_t number, std::size_t size) {
    detail::storeTiffInteger(block.data() + at, number, size, std::endian::big);
  };
  const struct {
    const char* what;
    void (*damage)(const decltype(store)&, Bytes&);
    bool isThumbnailFound = true;
  } cases[] = {
      {"bytes behind it", [](const auto&, Bytes&) {}},
      {"its length is that of all the rest",
       [](const auto& set, Bytes& block) {
         const auto reader = TiffReader::open(block);
         const std::size_t at = secondOf(block).record(1) + 8;
         set(block, at, block.size() - reader->u32(block.data() + secondOf(block).record(0) + 8),
             4);
       }},
      {"its length leads out",
       [](const auto& set, Bytes& block) {
         set(block, secondOf(block).record(1) + 8, 1 << 30, 4);
       }},
      {"a value of its directory has too many bytes",
       [](const auto& set, Bytes& block) {
         const std::size_t at = secondOf(block).record(0);
         set(block, at, 0x10F, 2);
         set(block, at + 2, 2, 2);
         set(block, at + 4, block.size() - 20, 4);
         set(block, at + 8, 10, 4);
       },
       false},
      {"its directory has too many records",
       [](const auto& set, Bytes& block) { set(block, secondOf(block).directory, 60000, 2); }},
      {"it stands at no picture",
       [](const auto& set, Bytes& block) { set(block, secondOf(block).record(0) + 8, 12, 4); },
       false},
      {"pixels of which there are too many",
       [](const auto& set, Bytes& block) {
         set(block, secondOf(block).record(0), 0x111, 2);
         set(block, secondOf(block).record(1), 0x117, 2);
         set(block, secondOf(block).record(1) + 8, 1 << 30, 4);
       },
       false},
  };
  for (const auto& [what, damage, isThumbnailFound] : cases) {
    SCOPED_TRACE(what);
    Bytes block = photograph(std::endian::big, foreignNote).bytes();
    const std::size_t end = block.size();
    const Bytes tail = bytesOf(std::string(300, 't') + " of a note's own directory");
    block.insert(block.end(), tail.begin(), tail.end());
    damage(store, block);
    const auto before = entriesOf(block);
    const std::uint32_t second = secondOf(block).directory;
    Dictionary properties = readExif(block);
    properties.set("Orientation", 1);
    const Bytes merged = mergeExif(block, properties, {});
    ASSERT_EQ(merged.size(), block.size());
    EXPECT_EQ(contains(merged, "old picture"), !isThumbnailFound);
    EXPECT_TRUE(std::ranges::equal(std::span(block).subspan(end), std::span(merged).subspan(end)));
    // But for the orientation and the way to the thumbnail nothing before it is touched.
    std::size_t changed = 0;
    for (std::size_t i = 0; i < second; ++i) changed += merged[i] != block[i];
    EXPECT_LE(changed, 2 + 4);
  }
}

TEST(ExifWriteTest, AValueInsideADirectoryStaysWhereNothingChanges) {
  Bytes block = photograph(std::endian::big).bytes();
  // The first resolution is read from the records of the last two tags.
  detail::storeTiffInteger(block.data() + 10 + 3 * 12 + 8, 10 + 9 * 12, 4, std::endian::big);
  Dictionary properties = readExif(block);
  properties.set("Orientation", 1);
  const Bytes merged = mergeExif(block, properties, {});
  EXPECT_EQ(entriesOf(merged).at({0, 0x11A}), entriesOf(block).at({0, 0x11A}));
  // The records before them move up.
  properties.subdictionary("{TIFF}").remove("Make");
  const auto moved = entriesOf(mergeExif(block, properties, {})).at({0, 0x11A});
  EXPECT_EQ(moved.value, entriesOf(block).at({0, 0x11A}).value);
}

TEST(ExifWriteTest, OfRecordsThatShareBytesTheLongestGo) {
  Bytes block = photograph(std::endian::big, foreignNote).bytes();
  const std::size_t size = block.size();
  block.resize(60'000, std::byte{7});
  // "Acme" and the software are damaged: each is nearly all of the block.
  for (const std::size_t index : {0U, 6U}) {
    const std::size_t record = 10 + 12 * index;
    detail::storeTiffInteger(block.data() + record + 4, block.size() - 8, 4, std::endian::big);
    detail::storeTiffInteger(block.data() + record + 8, 8, 4, std::endian::big);
  }
  Dictionary properties = readExif(block);
  properties.subdictionary("{Exif}").set("UserComment", std::string(7000, 'x'));
  properties.subdictionary("{GPS}").set("DOP", 3);
  const Bytes merged = mergeExif(block, properties, {});
  EXPECT_LE(merged.size(), 2 * size + 8000);
  EXPECT_EQ(in(readExif(merged), "{GPS}"), in(properties, "{GPS}"));
}

TEST(ExifWriteTest, PixelDimensionsAreThoseOfTheNewPixels) {
  TestBlock photo = photograph(std::endian::little);
  photo.image.push_back(photo.numbers(0x100, unsignedShort, {4032}));
  const Bytes block = photo.bytes();
  const Bytes merged = mergeExif(block, readExif(block), {70000, 480});
  EXPECT_EQ(*in(readExif(merged), "{Exif}").find("PixelXDimension"), Value(70000));
  const auto entries = entriesOf(merged);
  EXPECT_EQ(entries.at({0x8769, 0xA002}).type, unsignedLong);
  EXPECT_EQ(entries.at({0x8769, 0xA003}).type, unsignedShort);
  EXPECT_EQ(entries.at({0, 0x100}).count, 1);
  // Neither an EXIF directory without them nor a block without one gets any for their sake.
  std::erase_if(photo.exif, [](const TestEntry& entry) { return entry.tag == 0xA002; });
  EXPECT_FALSE(in(readExif(mergeExif(photo.bytes(), readExif(photo.bytes()), {640, 480})), "{Exif}")
                   .find("PixelXDimension"));
  photo.exif.clear();
  photo.interop.clear();
  EXPECT_FALSE(
      readExif(mergeExif(photo.bytes(), readExif(photo.bytes()), {640, 480})).find("{Exif}"));
}

// Sets one entry, or removes it where `value` is absent, and expects every other record to be the
// same in place, type and bytes.
void expectOnlyChange(std::string_view dictionary, std::string_view key,
                      const std::optional<Value>& value, std::pair<int, int> tag) {
  SCOPED_TRACE(key);
  for (const std::endian order : orders) {
    const Bytes block = photograph(order, foreignNote).bytes();
    Dictionary properties = readExif(block);
    if (value) {
      properties.subdictionary(dictionary).set(key, *value);
    } else {
      properties.subdictionary(dictionary).remove(key);
    }
    const Bytes merged = mergeExif(block, properties, {});
    EXPECT_EQ(in(readExif(merged), dictionary), in(properties, dictionary));
    auto before = entriesOf(block), after = entriesOf(merged);
    EXPECT_EQ(after.erase(tag), value ? 1 : 0);
    before.erase(tag);
    EXPECT_EQ(after, before);
  }
}

TEST(ExifWriteTest, OneChangeLeavesEveryOtherRecord) {
  expectOnlyChange("{TIFF}", "Software", "9", {0, 0x131});
  expectOnlyChange("{TIFF}", "Software", "A much longer name than the one before", {0, 0x131});
  expectOnlyChange("{TIFF}", "Software", std::nullopt, {0, 0x131});
  expectOnlyChange("{TIFF}", "Artist", "Somebody new", {0, 0x13B});
  expectOnlyChange("{Exif}", "UserComment", "\xE2\x82\xAC\xF0\x9F\x98\x80", {0x8769, 0x9286});
  expectOnlyChange("{Exif}", "UserComment", "\xE4\xB8\x80", {0x8769, 0x9286});  // "N" if swapped
  expectOnlyChange("{Exif}", "FNumber", 2.2, {0x8769, 0x829D});
  expectOnlyChange("{Exif}", "ISOSpeed", 102400, {0x8769, 0x8833});
  expectOnlyChange("{Exif}", "ISOSpeedRatings", Value(Array{100, 200, 400}), {0x8769, 0x8827});
  expectOnlyChange("{Exif}", "ExifVersion", Value(Array{2, 2, 1}), {0x8769, 0x9000});
  expectOnlyChange("{GPS}", "Latitude", 0.000001, {0x8825, 2});
  expectOnlyChange("{GPS}", "Latitude", std::nullopt, {0x8825, 2});
  expectOnlyChange("{GPS}", "ProcessingMethod", "GPS", {0x8825, 0x1B});
}

TEST(ExifWriteTest, RecordsThatShareAValueChangeAlone) {
  const TestBlock photo = photograph(std::endian::big);
  Bytes block = photo.bytes();
  // Both resolutions at the place of the first: record 3 and 4 of the first directory.
  std::copy_n(block.begin() + 10 + 3 * 12 + 8, 4, block.begin() + 10 + 4 * 12 + 8);
  Dictionary properties = readExif(block);
  properties.subdictionary("{TIFF}").set("XResolution", 300);
  const Dictionary tiff = in(readExif(mergeExif(block, properties, {})), "{TIFF}");
  EXPECT_EQ(*tiff.find("XResolution"), Value(300));
  EXPECT_EQ(*tiff.find("YResolution"), Value(72));
}

TEST(ExifWriteTest, ARecordOfNoTypeDoesNotComeFirst) {
  TestBlock block;
  block.image = {block.text(0x131, "Pelvar"), {0xFFFF, TiffType{0}, 72, Bytes(4)}};
  Bytes bytes = block.bytes();
  bytes[10 + 12] = bytes[10 + 13] = std::byte{0};  // Its tag: the first one in ascending order.
  EXPECT_EQ(entriesOf(mergeExif(bytes, readExif(bytes), {})).size(), 1);
}

TEST(ExifWriteTest, TheOrientationOfTheTopLevelWins) {
  const Bytes block = photograph(std::endian::big).bytes();
  Dictionary properties = readExif(block);
  properties.set("Orientation", 1);
  EXPECT_EQ(*in(readExif(mergeExif(block, properties, {})), "{TIFF}").find("Orientation"),
            Value(1));
  properties.remove("Orientation");
  EXPECT_EQ(*readExif(mergeExif(block, properties, {})).find("Orientation"), Value(6));
}

TEST(ExifWriteTest, ALocationIsSplitIntoTheFilesFields) {
  const Bytes block = photograph(std::endian::big).bytes();
  Dictionary properties = readExif(block);
  Dictionary& gps = properties.subdictionary("{GPS}");
  gps.set("TimeStamp", "2025:12:31 23:59:58");
  gps.set("Altitude", 12.5);  // Beside the old reference, which says below.
  Dictionary stored = in(readExif(mergeExif(block, properties, {})), "{GPS}");
  EXPECT_EQ(*stored.find("TimeStamp"), Value("23:59:58"));
  EXPECT_EQ(*stored.find("DateStamp"), Value("2025:12:31"));
  EXPECT_EQ(*stored.find("Altitude"), Value(12.5));
  EXPECT_EQ(*stored.find("AltitudeRef"), Value(0));

  gps.set("Altitude", -12.5);
  stored = in(readExif(mergeExif(block, properties, {})), "{GPS}");
  EXPECT_EQ(*stored.find("Altitude"), Value(12.5));
  EXPECT_EQ(*stored.find("AltitudeRef"), Value(1));

  // Properties in the file's form keep their own reference.
  const Dictionary below{{"{GPS}", Dictionary{{"Altitude", 12.5}, {"AltitudeRef", 1}}}};
  EXPECT_EQ(*in(readExif(mergeExif({}, below, {})), "{GPS}").find("AltitudeRef"), Value(1));
}

TEST(ExifWriteTest, CoordinatesOfNineDecimalsComeBackExactly) {
  std::mt19937_64 random(1);
  for (int i = 0; i < 2000; ++i) {
    const double degrees = static_cast<double>(random() % 180'000'000'000) / 1e9;
    const Dictionary properties{{"{GPS}", Dictionary{{"Longitude", degrees}}}};
    ASSERT_EQ(*in(readExif(mergeExif({}, properties, {})), "{GPS}").find("Longitude"),
              Value(degrees));
  }
}

TEST(ExifWriteTest, NumbersBecomeTheSimplestFraction) {
  struct Case {
    double value;
    std::uint32_t numerator, denominator;
  };
  for (const Case& c :
       {Case{5.6, 28, 5}, Case{1 / 120.0, 1, 120}, Case{0, 0, 1}, Case{65, 65, 1},
        Case{12.345678, 6172839, 500000}, Case{19869 / 97.0, 19869, 97},
        Case{4294967295.0, 4294967295, 1}, Case{1e-12, 0, 1}, Case{M_PI, 245850922, 78256779}}) {
    SCOPED_TRACE(c.value);
    const Bytes block = mergeExif({}, {{"{Exif}", Dictionary{{"FNumber", c.value}}}}, {});
    const StoredEntry stored = entriesOf(block).at({0x8769, 0x829D});
    const TiffReader reader(stored.value, std::endian::big);
    EXPECT_EQ(reader.u32(stored.value.data()), c.numerator);
    EXPECT_EQ(reader.u32(stored.value.data() + 4), c.denominator);
  }
}

TEST(ExifWriteTest, WhatCannotBeStoredIsSkippedAndTheRestIsNot) {
  const Bytes block = photograph(std::endian::big).bytes();
  for (const auto& [key, value] : {std::pair<std::string, Value>{"FNumber", nan},
                                   {"FNumber", infinity},
                                   {"FNumber", -1},
                                   {"FNumber", "2.8"},
                                   {"FNumber", 4294967296.0},
                                   {"ColorSpace", 65536},
                                   {"ColorSpace", 1.5},
                                   {"ColorSpace", -1},
                                   {"ISOSpeedRatings", 64},
                                   {"ISOSpeedRatings", Value(Array{"64"})},
                                   {"ISOSpeedRatings", Value(Array{})},
                                   {"LensSpecification", Value(Array{24, 70})},
                                   {"ExifVersion", Value(Array{100, 0})},
                                   {"UserComment", 3},
                                   {"LensModel", Value()}}) {
    SCOPED_TRACE(key);
    Dictionary properties = readExif(block);
    properties.subdictionary("{Exif}").set(key, value);
    properties.subdictionary("{Exif}").set("LensMake", "Lenses Inc.");
    const Dictionary exif = in(readExif(mergeExif(block, properties, {})), "{Exif}");
    EXPECT_FALSE(exif.find(key));
    EXPECT_EQ(exif.size(), in(properties, "{Exif}").size() - 1);
  }
  for (const char* time :
       {"24:00:00", "1:02:03", "01:02:03.", "01:02", "2025:12:31 25:00:00", ""}) {
    Dictionary properties = readExif(block);
    properties.subdictionary("{GPS}").set("TimeStamp", time);
    EXPECT_FALSE(in(readExif(mergeExif(block, properties, {})), "{GPS}").find("TimeStamp")) << time;
  }
}

TEST(ExifWriteTest, ANewBlockHasWhatTheStandardAsksOfIt) {
  const Dictionary properties{{"Orientation", 3},
                              {"{TIFF}", Dictionary{{"Software", "Pelvar"}, {"Unknown", 1}}},
                              {"{Exif}", Dictionary{{"UserComment", "odd"}, {"FNumber", 1.8}}},
                              {"{GPS}", Dictionary{{"Latitude", 1.5}, {"LatitudeRef", "S"}}}};
  const Bytes block = mergeExif({}, properties, {640, 480});
  EXPECT_EQ(readExif(block),
            (Dictionary{{"Orientation", 3},
                        {"{TIFF}", Dictionary{{"Orientation", 3}, {"Software", "Pelvar"}}},
                        {"{Exif}", Dictionary{{"FNumber", 1.8},
                                              {"ExifVersion", Value(Array{2, 3, 2})},
                                              {"UserComment", "odd"},
                                              {"PixelXDimension", 640},
                                              {"PixelYDimension", 480}}},
                        {"{GPS}", Dictionary{{"GPSVersion", Value(Array{2, 3, 0, 0})},
                                             {"LatitudeRef", "S"},
                                             {"Latitude", 1.5}}}}));
  for (const auto& [tag, entry] : entriesOf(block)) EXPECT_EQ(entry.offset % 2, 0) << tag.second;
  EXPECT_TRUE(mergeExif({}, {}, {640, 480}).empty());
  EXPECT_TRUE(mergeExif({}, {{"{Exif}", Dictionary{{"FNumber", nan}}}}, {640, 480}).empty());
  EXPECT_TRUE(mergeExif(bytesOf("no TIFF structure"), {{"DPIWidth", 72}}, {}).empty());
}

TEST(ExifWriteTest, ABlockThatOutgrowsASegmentIsBuiltAnew) {
  const TestBlock photo = photograph(std::endian::little, foreignNote);
  Bytes block = photo.bytes();
  block.resize(50000, std::byte{1});  // Bytes that nothing leads to.
  Dictionary properties = readExif(block);
  properties.subdictionary("{Exif}").set("UserComment", std::string(40000, 'x'));
  const Bytes merged = mergeExif(block, properties, {});
  EXPECT_LE(merged.size(), 45000);
  EXPECT_EQ(readExif(merged), properties);
  auto before = entriesOf(block), after = entriesOf(merged);
  EXPECT_EQ(after.at({0x8769, 0x927C}), before.at({0x8769, 0x927C}));
  EXPECT_EQ(after.at({0xA005, 1}).value, before.at({0xA005, 1}).value);
  EXPECT_EQ(after.at({0x8769, 0xC7A1}).value, before.at({0x8769, 0xC7A1}).value);
}

TEST(ExifWriteTest, OfATiffFileOnlyTheMetadataTravels) {
  TestBlock file;
  const std::string pixels = "the pixels of a TIFF file";
  file.image = {file.text(0x131, "Pelvar"), file.numbers(0x103, unsignedShort, {1}),
                file.numbers(0x111, unsignedLong, {8 + 2 + 5 * 12 + 4 + 8}),
                file.numbers(0x117, unsignedLong, {static_cast<std::int64_t>(pixels.size())}),
                file.raw(0x8773, undefined, "an ICC profile")};
  Bytes block = file.bytes();
  block.resize(8 + 2 + 5 * 12 + 4 + 8);
  const Bytes data = bytesOf(pixels);
  block.insert(block.end(), data.begin(), data.end());
  const Bytes merged = mergeExif(block, readExif(block), {});
  EXPECT_FALSE(contains(merged, "pixels"));
  EXPECT_EQ(readExif(merged), (Dictionary{{"{TIFF}", Dictionary{{"Software", "Pelvar"}}}}));
  EXPECT_EQ(entriesOf(merged).size(), 1);
}

TEST(ExifWriteTest, ManyRandomEditsReadBack) {
  struct Choice {
    std::string_view dictionary, key;
    std::vector<Value> values;
  };
  const Choice choices[] = {
      {"{TIFF}", "Software", {"a", "exactly so", std::string(300, 'b')}},
      {"{TIFF}", "Copyright", {"\xC2\xA9", "somebody"}},
      {"{TIFF}", "XResolution", {72, 299.5}},
      {"{TIFF}", "WhitePoint", {Value(Array{0.3127, 0.329})}},
      {"{Exif}", "UserComment", {"short", "\xE2\x82\xAC", std::string(70, 'c')}},
      {"{Exif}", "DateTimeOriginal", {"2024:05:06 07:08:09", "2025:01:01 00:00:00"}},
      {"{Exif}", "ISOSpeedRatings", {Value(Array{64}), Value(Array{1, 2, 3})}},
      {"{Exif}", "ExposureBiasValue", {-2, 0.5}},
      {"{Exif}", "Flash", {0, 16}},
      {"{GPS}", "Latitude", {12.25, 0}},
      {"{GPS}", "LatitudeRef", {"N", "S"}},
      {"{GPS}", "DOP", {5, 4.75}},
      {"{GPS}", "TimeStamp", {"00:00:00", "12:34:56.789"}},
      {"{MakerApple}", "17", {"an identifier", "another, longer identifier"}},
      {"{MakerApple}", "8", {Value(Array{-1, 0.5, 2}), Value(Array{0.25, 1})}},
  };
  std::mt19937 random(7);
  for (const std::endian order : orders) {
    Bytes block = photograph(order).bytes();
    Dictionary properties = readExif(block);
    for (int round = 0; round < 400; ++round) {
      for (std::size_t edits = random() % 4; edits > 0; --edits) {
        const Choice& choice = choices[random() % std::size(choices)];
        Dictionary& dictionary = properties.subdictionary(choice.dictionary);
        const std::size_t index = random() % (choice.values.size() + 1);
        if (index == choice.values.size()) {
          dictionary.remove(choice.key);
        } else {
          dictionary.set(choice.key, choice.values[index]);
        }
        if (dictionary.empty()) properties.remove(choice.dictionary);
      }
      block = mergeExif(block, properties, {});
      Dictionary stored = readExif(block);
      // Another word for what the resolution says.
      for (const char* key : {"DPIWidth", "DPIHeight"}) {
        if (const Value* value = stored.find(key)) {
          properties.set(key, *value);
        } else {
          properties.remove(key);
        }
      }
      ASSERT_EQ(stored, properties) << round;
    }
    EXPECT_TRUE(contains(block, "private"));
  }
}

}  // namespace
}  // namespace FrameworkUtility::testing
