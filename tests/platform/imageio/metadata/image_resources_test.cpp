#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/imageio/metadata/metadata_codec.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility::detail {
namespace {

using namespace std::string_literals;

std::span<const std::byte> bytesOf(std::string_view text) { return std::as_bytes(std::span(text)); }

std::string bigEndian(std::size_t value, int bytes) {
  std::string text;
  while (bytes-- > 0) text += static_cast<char>(value >> 8 * bytes);
  return text;
}

std::string dataset(int record, int number, std::string_view data) {
  return "\x1C"s + static_cast<char>(record) + static_cast<char>(number) +
         bigEndian(data.size(), 2) + std::string(data);
}

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
  const std::vector<std::byte> bytes = mergeImageResources(bytesOf(resources), properties);
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

Dictionary iptc(Dictionary entries) { return {{"{IPTC}", std::move(entries)}}; }

const std::string utf8Mark = dataset(1, 90, "\x1B%G");
const std::string version = dataset(2, 0, "\0\4"s);

TEST(ImageResourcesTest, ReadsTheRecordInThePlatformsShape) {
  const std::string long400 =
      dataset(2, 120, "").substr(0, 3) + "\x80\x04"s + bigEndian(400, 4) + std::string(400, 'x');
  EXPECT_EQ(read(resource(0x03ED, "res") +
                 resource(0x0404,
                          utf8Mark + version + dataset(2, 25, "sea") +
                              dataset(2, 25, "\xC3\xA9t\xC3\xA9") + dataset(2, 80, "Ada") +
                              dataset(2, 55, "20240501") + dataset(2, 5, "First") +
                              dataset(2, 5, "second") +
                              dataset(2, 101,
                                      "Fran\xE7"
                                      "e") +
                              dataset(2, 200, "?") + long400,
                          "\x02n2\0"s)),
            iptc({{"Keywords", Value(Array{"sea", "\xC3\xA9t\xC3\xA9"})},
                  {"Byline", Value(Array{"Ada"})},
                  {"DateCreated", "20240501"},
                  {"ObjectName", "First"},
                  {"Country/PrimaryLocationName",
                   "Fran\xC3\xA7"
                   "e"},
                  {"Caption/Abstract", std::string(400, 'x')}}));
}

TEST(ImageResourcesTest, MergesWhatChangedAndKeepsTheRest) {
  const std::string other = resource(0x03ED, "odd"), path = resource(0x07D0, "path");
  const std::string unknown = dataset(2, 200, "\xFF\0x"s), envelope = dataset(1, 20, "ab");
  const std::string digest = resource(0x0425, std::string(16, 'd'));
  const std::string city = dataset(2, 90, "Ulm"), latin = dataset(2, 5,
                                                                  "Gr\xFC\xDF"
                                                                  "e");
  const auto keywords = [](auto... words) {
    std::string text;
    ((text += dataset(2, 25, words)), ...);
    return text;
  };
  const Value sea(Array{"sea", "sky"});
  struct Case {
    const char* what;
    std::string resources;
    Dictionary after;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {"nothing changed",
       other + record(version + unknown + city + "rest") + digest + "tail",
       {{"City", "Ulm"}},
       other + record(version + unknown + city + "rest") + digest + "tail"},
      {"in its place",
       other + record(keywords("a", "b") + unknown + city) + digest + path + "tail",
       {{"City", "Ulm"}, {"Keywords", sea}},
       other + record(keywords("sea", "sky") + unknown + city) + path + "tail"},
      {"in order",
       other + record(envelope + version + city + dataset(3, 1, "x")),
       {{"City", "Ulm"}, {"Keywords", sea}, {"Caption/Abstract", "c"}},
       other + record(envelope + version + keywords("sea", "sky") + city + dataset(2, 120, "c") +
                      dataset(3, 1, "x"))},
      {"removed",
       record(version + unknown + city + latin) + other,
       {},
       record(version + unknown) + other},
      {"nothing left", other + record(utf8Mark + version + city) + digest + path, {}, other + path},
      {"a new record",
       other.substr(0, other.size() - 1),
       {{"City", "Ulm"}, {"Byline", "Ada"}},
       other + record(version + dataset(2, 80, "Ada") + city)},
      {"none before",
       "",
       {{"City", "\xC3\x9C"}},
       record(utf8Mark + version + dataset(2, 90, "\xC3\x9C"))},
      {"none wanted", "", {}, ""},
      {"Latin-1 stays",
       record(latin + city),
       {{"ObjectName",
         "Gr\xC3\xBC\xC3\x9F"
         "e"},
        {"City", "Bonn"}},
       record(latin + dataset(2, 90, "Bonn"))},
      {"Latin-1 turned",
       record(dataset(1, 90, "\x1B.A") + envelope + unknown + latin + city),
       {{"ObjectName",
         "Gr\xC3\xBC\xC3\x9F"
         "e"},
        {"City", "\xC3\x84"}},
       record(envelope + utf8Mark + unknown +
              dataset(2, 5,
                      "Gr\xC3\xBC\xC3\x9F"
                      "e") +
              dataset(2, 90, "\xC3\x84"))},
      {"no text",
       record(city),
       {{"City", Value(Array{})}, {"Urgency", 5}},
       record(dataset(2, 10, "5"))},
      {"old thumbnails go",
       resource(0x040C, "jfif") + record(city) + resource(0x0409, "x"),
       {{"City", "Ulm"}},
       record(city)},
      {"no resources at all", "garbage", {{"City", "Ulm"}}, record(version + city) + "garbage"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(merged(c.resources, iptc(c.after)), c.expected);
  }
}

TEST(ImageResourcesTest, WritesLongTexts) {
  const Dictionary after = iptc({{"Caption/Abstract", std::string(100000, 'x')}});
  EXPECT_EQ(read(merged("", after)), after);
}

TEST(ImageResourcesTest, KeepsDamagedBytes) {
  const std::string city = dataset(2, 90, "Ulm");
  const Dictionary ulm = iptc({{"City", "Ulm"}});
  const std::string whole = resource(0x03ED, "res") + record(city + dataset(2, 25, "a"));
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const std::string cut = whole.substr(0, size);
    EXPECT_EQ(merged(cut, read(cut)), cut);
  }
  for (const std::string& damage :
       {"\x1C\x02\x19\x80\x05\0\0\0\0\1"s, "\x1C\x02\x19\xFF\xFF"s,
        "\x1C\x02\x19\x80\x04\xFF\xFF\xFF\xFF"s, "\x1C\x02\x19\x7F\xFFx"s, "\x1C"s, "\0\0"s}) {
    const std::string resources = record(city + damage);
    EXPECT_EQ(read(resources), ulm);
    EXPECT_EQ(merged(resources, iptc({{"City", "Bonn"}})), record(dataset(2, 90, "Bonn") + damage));
  }
}

}  // namespace
}  // namespace FrameworkUtility::detail
