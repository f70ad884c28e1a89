#include <framework_utility/platform/foundation/values/byte_reader.h>
#include <framework_utility/platform/foundation/values/byte_writer.h>
#include <framework_utility/platform/imageio/metadata/iptc/image_resources.h>
#include <tests/support/files.h>

#include <gtest/gtest.h>

namespace FrameworkUtility::detail {
namespace {

using namespace std::string_literals;

using testing::bytesOf;

std::string bigEndian(std::size_t value, std::size_t size) {
  return std::string(asText(ByteWriter().putNumber(value, size)));
}

std::string dataset(int record, int number, std::string_view data) {
  return "\x1C"s + static_cast<char>(record) + static_cast<char>(number) +
         bigEndian(data.size(), 2) + std::string(data);
}

/// Of the application record.
std::string text(int number, std::string_view data) { return dataset(2, number, data); }

// `name` with its length, padded.
std::string resource(std::size_t number, std::string_view data,
                     std::string_view name = {"\0\0", 2}) {
  return "8BIM" + bigEndian(number, 2) + std::string(name) + bigEndian(data.size(), 4) +
         std::string(data) + std::string(data.size() % 2, '\0');
}

std::string record(std::string_view data) { return resource(0x0404, data); }

Dictionary read(std::string_view resources) {
  Dictionary properties;
  MetadataBudget budget;
  readImageResources(bytesOf(resources), properties, budget);
  return properties;
}

std::string merged(std::string_view resources, const Dictionary& properties) {
  return std::string(asText(mergeImageResources(bytesOf(resources), properties)));
}

Dictionary iptc(Dictionary entries) { return {{"{IPTC}", std::move(entries)}}; }

const std::string utf8Mark = dataset(1, 90, "\x1B%G");
const std::string version = text(0, "\0\4"s);
const std::string latin = "M\xFCnster", utf8 = "M\xC3\xBCnster";

TEST(ImageResourcesTest, ReadsTheRecordInThePlatformsShape) {
  const std::string long400 = "\x1C\x02\x78\x80\x04"s + bigEndian(400, 4) + std::string(400, 'x');
  const std::string datasets =
      dataset(1, 5, "a destination") + utf8Mark + version + text(25, "sea") + text(25, utf8) +
      text(80, "Ada") + text(55, "20240501") + text(5, "First") + text(5, "second") +
      text(101, latin + "\0"s) + text(200, "?") + dataset(3, 90, "3") + long400;
  EXPECT_EQ(read(resource(0x03ED, "res") + resource(0x0404, datasets, "\x02n2\0"s) +
                 record(text(90, "Ulm"))),
            iptc({{"Keywords", Value(Array{"sea", utf8})},
                  {"Byline", Value(Array{"Ada"})},
                  {"DateCreated", "20240501"},
                  {"ObjectName", "First"},
                  {"Country/PrimaryLocationName", utf8},
                  {"Caption/Abstract", std::string(400, 'x')}}));
}

TEST(ImageResourcesTest, MergesWhatChangedAndKeepsTheRest) {
  const std::string other = resource(0x03ED, "odd"), path = resource(0x07D0, "path");
  const std::string unknown = text(200, "\xFF\0x"s), envelope = dataset(1, 20, "ab");
  const std::string digest = resource(0x0425, std::string(16, 'd'));
  const std::string ulm = text(90, "Ulm"), bonn = text(90, "Bonn"), c = text(120, "c");
  const std::string words = text(25, "sea") + text(25, "sky");
  const Value sea(Array{"sea", "sky"});
  const auto expectMerged = [](const char* what, std::string_view resources,
                               const Dictionary& after, std::string_view expected) {
    EXPECT_EQ(merged(resources, iptc(after)), expected) << what;
  };
  const std::string whole = other + record(version + unknown + ulm + "rest") + digest + "tail";
  expectMerged("nothing changed", whole, {{"City", "Ulm"}}, whole);
  expectMerged(
      "in its place",
      other + record(text(25, "a") + unknown + text(25, "b") + ulm) + digest + path + "tail",
      {{"City", "Ulm"}, {"Keywords", sea}}, other + record(words + unknown + ulm) + path + "tail");
  expectMerged("in order", other + record(envelope + version + ulm + dataset(3, 1, "x")),
               {{"City", "Ulm"}, {"Keywords", sea}, {"Caption/Abstract", "c"}},
               other + record(envelope + version + words + ulm + c + dataset(3, 1, "x")));
  expectMerged("of the application record alone", record(dataset(1, 90, "x") + dataset(3, 90, "y")),
               {{"City", "Ulm"}}, record(dataset(1, 90, "x") + ulm + dataset(3, 90, "y")));
  expectMerged("removed", record(version + unknown + ulm + text(5, latin)) + other, {},
               record(version + unknown) + other);
  expectMerged("nothing left", other + record(utf8Mark + version + ulm) + digest + path, {},
               other + path);
  expectMerged("nothing but what is damaged", record(version + ulm + "rest"), {},
               record(version + "rest"));
  expectMerged("a new record", other.substr(0, other.size() - 1),
               {{"City", "Ulm"}, {"Byline", "Ada"}},
               other + record(version + text(80, "Ada") + ulm));
  expectMerged("none before", "", {{"City", utf8}}, record(utf8Mark + version + text(90, utf8)));
  expectMerged("none wanted", "", {}, "");
  expectMerged("Latin-1 stays", record(text(5, latin) + ulm),
               {{"ObjectName", utf8}, {"City", "Bonn"}}, record(text(5, latin) + bonn));
  expectMerged("Latin-1 turned",
               record(dataset(1, 90, "\x1B.A") + envelope + unknown + text(5, latin) + ulm),
               {{"ObjectName", utf8}, {"City", utf8}},
               record(envelope + utf8Mark + unknown + text(5, utf8) + text(90, utf8)));
  expectMerged("UTF-8 marked before", record(utf8Mark + text(5, latin)),
               {{"ObjectName", utf8}, {"City", utf8}},
               record(utf8Mark + text(5, latin) + text(90, utf8)));
  expectMerged("no text, and one of two", record(ulm),
               {{"City", Value(Array{})}, {"Urgency", 5}, {"Headline", Value(Array{"a", "b"})}},
               record(text(10, "5") + text(105, "a")));
  expectMerged(
      "old thumbnails and profiles go",
      resource(0x040C, "jfif") + record(ulm) + resource(0x0409, "x") + resource(0x040F, "p"),
      {{"City", "Ulm"}}, record(ulm));
  expectMerged("no resources at all", "garbage", {{"City", "Ulm"}},
               record(version + ulm) + "garbage");

  const std::size_t limit = 0x7FFF;
  for (const std::size_t size : {limit, limit + 1, std::size_t{100000}}) {
    const Dictionary after = iptc({{"Caption/Abstract", std::string(size, 'x')}});
    const std::string stored = merged("", after);
    EXPECT_EQ(read(stored), after);
    EXPECT_EQ(stored.size(),
              (record(version + c)).size() - 2 + size + size % 2 + (size > limit ? 4 : 0));
  }
}

TEST(ImageResourcesTest, KeepsDamagedBytes) {
  const std::string ulm = text(90, "Ulm");
  const std::string whole = resource(0x03ED, "res") + record(ulm + text(25, "a"));
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const std::string cut = whole.substr(0, size);
    EXPECT_EQ(merged(cut, read(cut)), cut);
  }
  for (const std::string& damage :
       {"\x1C\x02\x19\x80\x05\0\0\0\0\1"s, "\x1C\x02\x19\xFF\xFF"s,
        "\x1C\x02\x19\x80\x04\xFF\xFF\xFF\xFF"s, "\x1C\x02\x19\x7F\xFFx"s, "\x1C"s, "\0\0"s}) {
    const std::string resources = record(ulm + damage);
    EXPECT_EQ(read(resources), iptc({{"City", "Ulm"}}));
    EXPECT_EQ(merged(resources, iptc({{"City", "Bonn"}})), record(text(90, "Bonn") + damage));
  }
}

}  // namespace
}  // namespace FrameworkUtility::detail
