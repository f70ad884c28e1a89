#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <tests/platform/imageio/metadata/exif_block.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace FrameworkUtility::testing {
namespace {

using detail::mergeExif;
using enum TiffType;

constexpr std::endian orders[] = {std::endian::big, std::endian::little};
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

bool contains(const ByteVector& block, std::string_view text) {
  return detail::asText(block).find(text) != std::string_view::npos;
}

Dictionary merged(const ByteVector& block, const Dictionary& properties) {
  return readExif(mergeExif(block, properties, {}));
}

/// Sets one entry, or removes it where there is no value.
Dictionary with(Dictionary properties, std::string_view dictionary, std::string_view key,
                const std::optional<Value>& value) {
  if (value) {
    properties.subdictionary(dictionary).set(key, *value);
  } else {
    properties.subdictionary(dictionary).remove(key);
  }
  return properties;
}

// A note of another maker, which this library cannot read.
const std::string foreignNote = "Acme\1\2 a note that holds absolute offsets";

TEST(ExifWriteTest, WithoutAChangeOnlyTheThumbnailGoes) {
  for (const std::endian order : orders) {
    TestBlock photo = photograph(order, foreignNote);
    const ByteVector block = photo.bytes();
    const ByteVector saved = mergeExif(block, readExif(block), {});
    EXPECT_FALSE(contains(saved, "old picture"));
    photo.thumbnail = {};
    EXPECT_EQ(saved, photo.bytes());
  }
}

TEST(ExifWriteTest, OnlyWhatTheThumbnailOwnsIsZeroed) {
  // Directories of a maker's note may stand anywhere, so nothing is free because nobody is known
  // to need it.
  ByteVector sound = photograph(std::endian::big, foreignNote).bytes();
  const std::size_t end = sound.size();
  const std::string tail = std::string(300, 't') + " of a note's own directory";
  sound.insert(sound.end(), bytesOf(tail).begin(), bytesOf(tail).end());
  const auto reader = TiffReader::open(sound);
  const std::size_t second = reader->nextDirectory(reader->firstDirectory());
  // In the thumbnail's directory: two records of tag, type, count and value.
  constexpr std::size_t tag1 = 2, type1 = 4, count1 = 6, value1 = 10, tag2 = 14, value2 = 22;
  const std::size_t rest = sound.size() - (second + 2 + 2 * 12 + 4);
  struct Damage {
    std::size_t at, number, size = 4;
  };
  const auto expectSpared = [&](const char* what, const std::vector<Damage>& damages,
                                bool isThumbnailFound = true) {
    SCOPED_TRACE(what);
    ByteVector block = sound;
    for (const auto& [at, number, size] : damages) store(block, second + at, number, size);
    Dictionary properties = readExif(block);
    properties.set("Orientation", 1);
    const ByteVector saved = mergeExif(block, properties, {});
    ASSERT_EQ(saved.size(), block.size());
    EXPECT_EQ(contains(saved, "old picture"), !isThumbnailFound);
    EXPECT_TRUE(std::ranges::equal(std::span(block).subspan(end), std::span(saved).subspan(end)));
    // But for the orientation and the way to the thumbnail nothing before it is touched.
    std::size_t changed = 0;
    for (std::size_t i = 0; i < second; ++i) changed += saved[i] != block[i];
    EXPECT_LE(changed, 2 + 4);
  };
  expectSpared("bytes behind it", {});
  expectSpared("its length is that of all the rest", {{value2, rest}});
  expectSpared("its length leads out", {{value2, 1 << 30}});
  expectSpared("its directory has too many records", {{0, 60000, 2}});
  expectSpared("a value of its directory has too many bytes",
               {{tag1, 0x10F, 2}, {type1, 2, 2}, {count1, sound.size() - 20}, {value1, 10}}, false);
  expectSpared("it stands at no picture", {{value1, 12}}, false);
  expectSpared("pixels of which there are too many",
               {{tag1, 0x111, 2}, {tag2, 0x117, 2}, {value2, 1 << 30}}, false);
}

// The place of a record's part in the first directory: 0 for its tag, 4 for its count, 8 for the
// value. The resolutions are the records 2 and 3.
constexpr std::size_t recordAt(std::size_t index, std::size_t part) {
  return 10 + 12 * index + part;
}

TEST(ExifWriteTest, ValuesMayShareTheirBytes) {
  const ByteVector sound = photograph(std::endian::big).bytes();
  // Both resolutions at the place of the first: each changes alone.
  ByteVector block = sound;
  std::copy_n(block.begin() + recordAt(2, 8), 4, block.begin() + recordAt(3, 8));
  const Dictionary tiff =
      in(merged(block, with(readExif(block), "{TIFF}", "XResolution", 300)), "{TIFF}");
  EXPECT_EQ(*tiff.find("XResolution"), Value(300));
  EXPECT_EQ(*tiff.find("YResolution"), Value(72));

  // The make and the software are damaged: each is nearly all of the block. The longest go.
  block = photograph(std::endian::big, foreignNote).bytes();
  const std::size_t size = block.size();
  block.resize(60'000, std::byte{7});
  for (const std::size_t index : {0U, 5U}) {
    store(block, recordAt(index, 4), block.size() - 8, 4);
    store(block, recordAt(index, 8), 8, 4);
  }
  Dictionary properties = with(readExif(block), "{Exif}", "UserComment", std::string(7000, 'x'));
  properties = with(properties, "{GPS}", "DOP", 3);
  const ByteVector saved = mergeExif(block, properties, {});
  EXPECT_LE(saved.size(), 2 * size + 8000);
  EXPECT_EQ(in(readExif(saved), "{GPS}"), in(properties, "{GPS}"));
}

TEST(ExifWriteTest, PixelDimensionsAreThoseOfTheNewPixels) {
  TestBlock photo = photograph(std::endian::little);
  photo.image.push_back({0x100, shorts(4032)});
  const auto savedAt = [&](std::size_t width, std::size_t height) {
    return mergeExif(photo.bytes(), readExif(photo.bytes()), {width, height});
  };
  const ByteVector saved = savedAt(70000, 480);
  EXPECT_EQ(*in(readExif(saved), "{Exif}").find("PixelXDimension"), Value(70000));
  EXPECT_EQ(*in(readExif(saved), "{Exif}").find("PixelYDimension"), Value(480));
  const auto entries = entriesOf(saved);
  EXPECT_EQ(entries.at({0x8769, 0xA002}).type, unsignedLong);
  EXPECT_EQ(entries.at({0x8769, 0xA003}).type, unsignedShort);
  EXPECT_EQ(entries.at({0, 0x100}).value, longs(70000).bytes(std::endian::little));
  // Neither an EXIF directory without them nor a block without one gets any for their sake.
  std::erase_if(photo.exif, [](const TestEntry& entry) { return entry.tag == 0xA002; });
  EXPECT_FALSE(in(readExif(savedAt(640, 480)), "{Exif}").find("PixelXDimension"));
  photo.exif.clear();
  photo.interop.clear();
  EXPECT_FALSE(readExif(savedAt(640, 480)).find("{Exif}"));
}

TEST(ExifWriteTest, ATypeStaysWhereItHoldsTheNumber) {
  const struct {
    TiffType type;
    std::vector<double> held, others;
  } cases[] = {
      {unsignedByte, {0, 255}, {-1, 256, 0.5}},
      {undefined, {0, 255}, {-1, 256}},
      {signedByte, {-128, 127}, {-129, 128}},
      {unsignedShort, {0, 65535}, {-1, 65536}},
      {signedShort, {-32768, 32767}, {-32769, 32768}},
      {unsignedLong, {0, 4294967295}, {-1}},
      {signedLong, {-2147483648, 2147483647}, {0.5}},
      {unsignedRational, {0, 0.5, 4294967295}, {-0.5}},
      {signedRational, {-0.5, -2147483647, 2147483647}, {}},
      {singleFloat, {-0.5, 16777216}, {0.1, 16777217}},
      {doubleFloat, {-0.1, 16777217}, {}},
      {directory, {}, {1}},
  };
  for (const auto& [type, held, others] : cases) {
    for (const auto* numbersOfOne : {&held, &others}) {
      const TiffType expected = numbersOfOne == &held ? type : signedRational;
      for (const double number : *numbersOfOne) {
        SCOPED_TRACE(::testing::Message() << static_cast<int>(type) << ' ' << number);
        TestBlock photo{.order = std::endian::little};
        photo.exif = {{0x9204, numbers(type, 7, 1)}};
        const Dictionary properties{{"{Exif}", Dictionary{{"ExposureBiasValue", number}}}};
        const ByteVector saved = mergeExif(photo.bytes(), properties, {});
        EXPECT_EQ(readExif(saved), properties);
        EXPECT_EQ(entriesOf(saved).at({0x8769, 0x9204}).type, expected);
      }
    }
  }
}

TEST(ExifWriteTest, WhatCannotBeStoredIsSkippedAndTheRestIsNot) {
  const auto list = [](auto... numbers) { return Value(Array{numbers...}); };
  const ByteVector block = photograph(std::endian::big).bytes();
  const Dictionary before = with(readExif(block), "{Exif}", "LensMake", "Lenses Inc.");
  const auto expectStored = [&](std::string_view dictionary, std::string_view key,
                                const std::vector<Value>& stored,
                                const std::vector<Value>& skipped) {
    const auto savedWith = [&](const Value& value) {
      return in(merged(block, with(before, dictionary, key, value)), dictionary);
    };
    for (const Value& value : stored) {
      EXPECT_EQ(savedWith(value), in(with(before, dictionary, key, value), dictionary)) << key;
    }
    for (const Value& value : skipped) {
      EXPECT_EQ(savedWith(value), in(with(before, dictionary, key, std::nullopt), dictionary))
          << key << value.description();
    }
  };
  expectStored("{Exif}", "FNumber", {4294967295.0}, {nan, infinity, -1, "2.8", 4294967296.0});
  expectStored("{Exif}", "ColorSpace", {0, 65535}, {65536, 1.5, -1});
  expectStored("{Exif}", "ISOSpeedRatings", {list(65535)}, {64, list("64"), list(), list(65536)});
  expectStored("{Exif}", "LensSpecification", {list(24, 70, 2, 4)}, {list(24, 70)});
  expectStored("{Exif}", "ExifVersion", {list(99, 9, 9)},
               {list(100, 0), list(1, 10), list(2), list(2, 3, 1, 1), list(2, 0.5)});
  expectStored("{Exif}", "UserComment", {""}, {3});
  expectStored("{Exif}", "LensModel", {"L"}, {Value()});
  expectStored("{GPS}", "Longitude", {0, 360, 1 / 3.0}, {-1, 361, nan, "1"});
  expectStored("{GPS}", "TimeStamp", {"00:00:00", "23:59:60.1234567"},
               {"24:00:00", "00:60:00", "00:00:61", "1:02:03", "01:02:03.", "01:02:03x",
                "01:02:03.12345678", "01:02", "01-02-03", "0a:02:03", ""});
}

TEST(ExifWriteTest, WhatTheAppsSayIsSplitIntoTheFilesFields) {
  const ByteVector block = photograph(std::endian::big).bytes();
  const auto expectStored = [&](const Dictionary& given, const Dictionary& expected) {
    SCOPED_TRACE(Value(given).description());
    Dictionary properties = readExif(block);
    for (const auto& [key, value] : given) properties.subdictionary("{GPS}").set(key, value);
    const Dictionary stored = in(merged(block, properties), "{GPS}");
    for (const auto& [key, value] : expected) {
      EXPECT_EQ(stored.find(key) ? *stored.find(key) : Value(), value);
    }
  };
  expectStored({{"TimeStamp", "2025:12:31 23:59:58"}},
               {{"TimeStamp", "23:59:58"}, {"DateStamp", "2025:12:31"}});
  expectStored({{"TimeStamp", "2025:12:31 "}},
               {{"TimeStamp", Value()}, {"DateStamp", "2024:05:06"}});
  expectStored({{"TimeStamp", "2025-12-31 23:59:58"}}, {{"TimeStamp", Value()}});
  // The photograph's altitude is below the sea.
  expectStored({{"Speed", 3}}, {{"AltitudeRef", 1}});
  expectStored({{"Altitude", 12.5}}, {{"Altitude", 12.5}, {"AltitudeRef", 0}});
  expectStored({{"Altitude", 0}}, {{"Altitude", 0}, {"AltitudeRef", 0}});
  expectStored({{"Altitude", -12.5}}, {{"Altitude", 12.5}, {"AltitudeRef", 1}});
  // Properties in the file's form keep their own reference.
  const Dictionary below{{"{GPS}", Dictionary{{"Altitude", 12.5}, {"AltitudeRef", 1}}}};
  EXPECT_EQ(*in(merged({}, below), "{GPS}").find("AltitudeRef"), Value(1));

  Dictionary turned = readExif(block);
  turned.set("Orientation", 1);
  EXPECT_EQ(*in(merged(block, turned), "{TIFF}").find("Orientation"), Value(1));
  turned.remove("Orientation");
  EXPECT_EQ(*merged(block, turned).find("Orientation"), Value(6));
}

TEST(ExifWriteTest, ANewBlockHasWhatTheStandardAsksOfIt) {
  const Dictionary properties{{"Orientation", 3},
                              {"{TIFF}", Dictionary{{"Software", "Pelvar"}, {"Unknown", 1}}},
                              {"{Exif}", Dictionary{{"UserComment", "odd"}, {"FNumber", 1.8}}},
                              {"{GPS}", Dictionary{{"Latitude", 1.5}, {"LatitudeRef", "S"}}}};
  Dictionary expected = properties;
  expected.set("{TIFF}", Dictionary{{"Orientation", 3}, {"Software", "Pelvar"}});
  expected.subdictionary("{Exif}").set("ExifVersion", Value(Array{2, 3, 2}));
  expected.subdictionary("{Exif}").set("PixelXDimension", 640);
  expected.subdictionary("{Exif}").set("PixelYDimension", 480);
  expected.subdictionary("{GPS}").set("GPSVersion", Value(Array{2, 3, 0, 0}));
  const ByteVector block = mergeExif({}, properties, {640, 480});
  EXPECT_EQ(readExif(block), expected);
  for (const auto& [tag, entry] : entriesOf(block)) EXPECT_EQ(entry.offset % 2, 0) << tag.second;
  EXPECT_TRUE(mergeExif({}, {}, {640, 480}).empty());
  EXPECT_TRUE(mergeExif({}, {{"{Exif}", Dictionary{{"FNumber", nan}}}}, {640, 480}).empty());
  EXPECT_TRUE(mergeExif(bytesOf("no TIFF structure"), {{"DPIWidth", 72}}, {}).empty());
}

TEST(ExifWriteTest, ABlockThatOutgrowsASegmentIsBuiltAnew) {
  ByteVector block = photograph(std::endian::little, foreignNote).bytes();
  block.resize(50000, std::byte{1});  // ByteVector that nothing leads to.
  const Dictionary properties =
      with(readExif(block), "{Exif}", "UserComment", std::string(40000, 'x'));
  const ByteVector saved = mergeExif(block, properties, {});
  EXPECT_LE(saved.size(), 45000);
  EXPECT_EQ(readExif(saved), properties);
  auto before = entriesOf(block), after = entriesOf(saved);
  EXPECT_EQ(after.at({0x8769, 0x927C}), before.at({0x8769, 0x927C}));
  for (const auto& unknown : {std::pair{0xA005, 1}, {0x8769, 0xC7A1}}) {
    EXPECT_EQ(after.at(unknown).value, before.at(unknown).value);
  }
}

TEST(ExifWriteTest, OfATiffFileOnlyTheMetadataTravels) {
  const std::string pixels = "the pixels of a TIFF file";
  TestBlock file;
  file.image = {{0x131, "Pelvar"},
                {0x103, shorts(1)},
                {0x111, longs(8 + 2 + 5 * 12 + 4 + 8 + 14)},
                {0x117, longs(pixels.size())},
                {0x8773, opaque("an ICC profile")}};
  ByteVector block = file.bytes();
  block.insert(block.end(), bytesOf(pixels).begin(), bytesOf(pixels).end());
  const ByteVector saved = mergeExif(block, readExif(block), {});
  EXPECT_FALSE(contains(saved, "pixels"));
  EXPECT_EQ(readExif(saved), (Dictionary{{"{TIFF}", Dictionary{{"Software", "Pelvar"}}}}));
  EXPECT_EQ(entriesOf(saved).size(), 1);

  // A record of no type, though its tag is the first one in ascending order, does not count.
  file.image = {{0x131, "Pelvar"}, {0xFFFF, longs(0)}};
  block = file.bytes();
  store(block, recordAt(1, 0), 0, 4);
  EXPECT_EQ(entriesOf(mergeExif(block, readExif(block), {})).size(), 1);
}

TEST(ExifWriteTest, EditsReadBackAndLeaveEveryOtherRecord) {
  const struct {
    std::string_view dictionary, key;
    std::pair<int, int> tag;
    std::vector<Value> values;
  } choices[] = {
      {"{TIFF}", "Software", {0, 0x131}, {"9", "exactly so", std::string(300, 'b')}},
      {"{TIFF}", "Copyright", {0, 0x8298}, {"\xC2\xA9", "somebody"}},
      {"{TIFF}", "WhitePoint", {0, 0x13E}, {Value(Array{0.3127, 0.329})}},
      {"{Exif}", "UserComment", {0x8769, 0x9286}, {"\xE2\x82\xAC\xF0\x9F\x98\x80", "\xE4\xB8\x80"}},
      {"{Exif}", "ISOSpeedRatings", {0x8769, 0x8827}, {Value(Array{64}), Value(Array{1, 2, 3})}},
      {"{GPS}", "LatitudeRef", {0x8825, 1}, {"N", "S"}},
      {"{GPS}", "ProcessingMethod", {0x8825, 0x1B}, {"GPS"}},
      {"{GPS}", "Longitude", {0x8825, 4}, {12.345678901, 0.000001}},
      {"{MakerApple}", "8", {0x8769, 0x927C}, {Value(Array{-1, 0.5, 2}), Value(Array{0.25, 1})}},
  };
  for (const std::endian order : orders) {
    ByteVector block = photograph(order).bytes();
    Dictionary properties = readExif(block);
    const auto edit = [&](const auto& choice, const std::optional<Value>& value) {
      SCOPED_TRACE(choice.key);
      auto before = entriesOf(block);
      properties = with(properties, choice.dictionary, choice.key, value);
      if (in(properties, choice.dictionary).empty()) properties.remove(choice.dictionary);
      block = mergeExif(block, properties, {});
      EXPECT_EQ(readExif(block), properties);
      // In place, type and bytes.
      auto after = entriesOf(block);
      before.erase(choice.tag);
      after.erase(choice.tag);
      EXPECT_EQ(after, before);
    };
    for (const auto& choice : choices) {
      for (const Value& value : choice.values) edit(choice, value);
    }
    for (const auto& choice : choices) edit(choice, std::nullopt);
    for (const auto& choice : choices) edit(choice, choice.values.front());
  }
}

}  // namespace
}  // namespace FrameworkUtility::testing
