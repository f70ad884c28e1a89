#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>
#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <tests/platform/foundation/property_lists/binary_list.h>
#include <tests/support/is_error.h>
#include <tests/support/words.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace FrameworkUtility {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using testing::bigEndian;
using testing::BinaryList;

template <class T>
constexpr T largest = std::numeric_limits<T>::max();
template <class T>
constexpr T smallest = std::numeric_limits<T>::min();

std::string text(const Data& data) {
  return {reinterpret_cast<const char*>(data.data()), data.size()};
}

/// Absent with the one code of what cannot be read.
std::optional<Value> read(const std::string& bytes, const PropertyListLimits& limits = {}) {
  Error error;
  std::optional<Value> value =
      propertyListWithData(std::as_bytes(std::span(bytes)), limits, &error);
  if (!value) {
    EXPECT_THAT(error, testing::IsError(PropertyListError::readCorrupt));
  }
  return value;
}

/// The one object with these bytes.
std::optional<Value> readOne(const std::string& object) {
  return read(BinaryList{{object}}.bytes());
}

Value nested(int depth) {
  Value value = "innermost";
  for (int i = 1; i < depth; ++i) value = Value(Array{value});
  return value;
}

TEST(PropertyListTest, ValuesTakeThePlatformsBytes) {
  const std::pair<Value, std::string> cases[] = {
      {0, "\x10\0"s},
      {255, "\x10\xFF"},
      {256, "\x11\1\0"s},
      {65536, "\x12\0\1\0\0"s},
      {0x100000000, "\x13\0\0\0\1\0\0\0\0"s},
      {-1, "\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
      {largest<std::int64_t>, "\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
      {largest<std::uint64_t>, "\x14"s + std::string(8, '\0') + std::string(8, '\xFF')},
      {1ULL, "\x10\1"},
      {0.5f, "\x22\x3F\0\0\0"s},
      {0.5, "\x23\x3F\xE0\0\0\0\0\0\0"s},
      {true, "\x09"},
      {false, "\x08"},
      {"text", "\x54text"},
      {"e\u00E9\U0001F600", "\x64\0e\0\xE9\xD8\x3D\xDE\0"s},
      {std::string(16, 'x'), "\x5F\x10\x10"s + std::string(16, 'x')},
      {Data(std::as_bytes(std::span("xyz", 3))), "\x43xyz"},
      {Date(std::chrono::sys_days{2001y / 1 / 1} - 1500ms), "\x33\xBF\xF8\0\0\0\0\0\0"s},
      {Value(Array{}), "\xA0"},
      {Dictionary(), "\xD0"},
  };
  for (const auto& [value, bytes] : cases) {
    SCOPED_TRACE(value);
    EXPECT_EQ(text(*dataWithPropertyList(value)), (BinaryList{{bytes}, 1, 1}.bytes()));
    const std::optional<Value> again = readOne(bytes);
    EXPECT_EQ(again, value);
    EXPECT_EQ(dataWithPropertyList(*again), dataWithPropertyList(value));  // its kind too
  }
  Array many;  // more than a byte can number
  for (int i = 0; i < 300; ++i) many.push_back(i);
  EXPECT_EQ(propertyListWithData(*dataWithPropertyList(Value(many))), Value(many));
  // Equal texts are written once.
  EXPECT_EQ(text(*dataWithPropertyList(Dictionary{{"k", Value(Array{true, "k"})}})),
            (BinaryList{{"\xD1\1\2"s, "\x51k", "\xA2\3\1"s, "\x09"}, 1, 1}.bytes()));
  EXPECT_EQ(readOne("\x14"s + std::string(16, '\xFF')), Value(-1));
  EXPECT_EQ(readOne("\x14"s + std::string(8, '\xFF') + "\x80"s + std::string(7, '\0')),
            Value(smallest<std::int64_t>));
  EXPECT_EQ(readOne("\x62\xDE\0\xD8\x3D"s), Value("\uFFFD\uFFFD"));
}

TEST(PropertyListTest, ArchivesReferToObjectsByNumber) {
  for (const std::uint64_t number : {0ULL, 1ULL, 255ULL, 256ULL, 1ULL << 40}) {
    const Value uid(std::make_shared<PropertyListUID>(number));
    const std::optional<Value> value =
        propertyListWithData(*dataWithPropertyList(Dictionary{{"root", uid}}));
    EXPECT_EQ(PropertyListUID::numberIn(*value->as<Dictionary>()->find("root")), number);
  }
  EXPECT_EQ(text(*dataWithPropertyList(Value(std::make_shared<PropertyListUID>(300)))),
            (BinaryList{{"\x81\1\x2C"}, 1, 1}.bytes()));
  EXPECT_EQ(PropertyListUID::numberIn(*readOne("\x82\1\2\3"s)), 0x010203u);
  EXPECT_FALSE(PropertyListUID::numberIn(1));
}

TEST(PropertyListTest, WhatNoListHoldsIsRefused) {
  const Value values[] = {Value(),        URL::fileURLWithPath("/a"),
                          Error("D", 1),  Dictionary{{1, 2}},
                          Date::min(),    Date::max(),
                          nested(65),     "\xFF",
                          "a\xC3",        "\xC0\x80",
                          "\xED\xA0\x80", "\xF4\x90\x80\x80",
                          "\xE2\x82?"};
  for (const Value& value : values) {
    Error error;
    EXPECT_FALSE(dataWithPropertyList(Dictionary{{"key", value}}, &error)) << value;
    EXPECT_THAT(error, testing::IsError(PropertyListError::writeInvalid));
  }
}

TEST(PropertyListTest, DepthIsLimited) {
  const std::optional<Data> data = dataWithPropertyList(nested(64));
  ASSERT_TRUE(data);
  EXPECT_TRUE(propertyListWithData(*data));
  EXPECT_FALSE(read(text(*data), {.depth = 63}));

  BinaryList deep;
  deep.referenceSize = 3;
  for (std::uint64_t i = 1; i < 200'000; ++i) deep.objects.push_back("\xA1"s + bigEndian(i, 3));
  deep.objects.push_back("\x09");
  EXPECT_FALSE(read(deep.bytes()));
  EXPECT_FALSE(read(deep.bytes(), {.depth = 1'000'000}));
}

TEST(PropertyListTest, ExpansionIsLimited) {
  BinaryList doubling;  // 24 levels of two references: 16 million values in 138 bytes
  for (char i = 1; i <= 24; ++i) doubling.objects.push_back({'\xA2', i, i});
  doubling.objects.push_back("\x09");
  EXPECT_FALSE(read(doubling.bytes()));

  const std::string many = "\xAF\x12"s + bigEndian(100'000, 4) + std::string(100'000, '\1');
  EXPECT_TRUE(read(BinaryList{{many, "\x09"}}.bytes()));
  for (const std::string marker : {"\x4F\x12", "\x5F\x12"}) {  // a large one as often
    const std::string large = marker + bigEndian(100'000, 4) + std::string(100'000, 'x');
    EXPECT_FALSE(read(BinaryList{{many, large}}.bytes()));
  }
}

TEST(PropertyListTest, DamageIsRefused) {
  const std::string good = BinaryList{{"\xD1\1\2"s, "\x51k", "\x09"}}.bytes();
  ASSERT_TRUE(read(good));
  EXPECT_TRUE(read(BinaryList{{"\xA2\1\1"s, "\xA0"}}.bytes()));  // sharing is no cycle
  EXPECT_TRUE(read(BinaryList{{"\xA1" + bigEndian(1, 8), "\xA0"}, 8, 8}.bytes()));
  const auto with = [&](std::size_t fromEnd, const std::string& bytes) {
    return std::string(good).replace(good.size() - fromEnd, bytes.size(), bytes);
  };
  const std::string lists[] = {
      "",
      "bplist00",
      BinaryList{{"\xA1\0"s}}.bytes(),  // reaches itself
      BinaryList{{"\xA1\1"s, "\xA1\0"s}}.bytes(),
      BinaryList{{"\xD1\1\0"s, "\x51k"}}.bytes(),
      std::string(good).replace(0, 8, "bplist15"),
      with(26, "\0"s),  // size of an offset
      with(26, "\x09"),
      with(25, "\0"s),  // size of a reference
      with(25, "\x09"),
      with(24, bigEndian(0, 8)),  // number of objects
      with(24, bigEndian(1ULL << 61, 8)),
      with(24, bigEndian(4, 8)),  // one more than the table has room for
      with(24, bigEndian(2, 8)),  // a reference past them
      with(16, bigEndian(3, 8)),  // top object
      with(8, bigEndian(7, 8)),   // offset of the table
      with(8, bigEndian(~0ULL, 8)),
      with(44, bigEndian(7, 4)),  // offset of an object
      with(44, bigEndian(~0U, 4)),
      BinaryList{{"\xAF\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"}}.bytes(),
      BinaryList{{"\x4F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"}}.bytes(),
      BinaryList{{"\xDF\x13\x20\0\0\0\0\0\0\0"s}}.bytes(),
      BinaryList{{"\x4F\x51x"}}.bytes(),  // a length that is a text
      BinaryList{{"\x52x"}}.bytes(),
      BinaryList{{"\x13\0"s}}.bytes(),
      BinaryList{{"\x14"s + std::string(8, '\xFF') + "\x7F"s + std::string(7, '\0')}}.bytes(),
      BinaryList{{"\x14"s + std::string(7, '\0') + "\1"s + std::string(8, '\0')}}.bytes(),
      BinaryList{{"\x51\xFC"}}.bytes(),  // neither ASCII nor UTF-16
      BinaryList{{"\x15"}}.bytes(),
      BinaryList{{"\x24"}}.bytes(),
      BinaryList{{"\x33\x7F\xF0\0\0\0\0\0\0"s}}.bytes(),  // an infinite date
      BinaryList{{"\x32\0\0\0\0"s}}.bytes(),
      BinaryList{{"\x0F"}}.bytes(),
      BinaryList{{"\x70"}}.bytes(),
      BinaryList{{"\xD1\1\2"s, "\x10\1", "\x09"}}.bytes(),              // a number as key
      BinaryList{{"\xD2\1\2\3\3"s, "\x51k", "\x51k", "\x09"}}.bytes(),  // a key twice
  };
  for (std::size_t i = 0; i < std::size(lists); ++i) {
    EXPECT_FALSE(read(lists[i])) << i;
  }

  BinaryList large{{"\xDF\x10\x20"s}};  // a key twice among many
  for (char i = 0; i < 32; ++i) large.objects[0] += static_cast<char>(1 + i % 31);
  large.objects[0] += std::string(32, '\1');
  for (char i = 0; i < 31; ++i) large.objects.push_back({'\x51', static_cast<char>('A' + i)});
  EXPECT_FALSE(read(large.bytes()));
}

const std::string prologue =
    R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
)";

std::optional<Value> readXML(const std::string& value, const PropertyListLimits& limits = {}) {
  return read(prologue + "<plist version=\"1.0\">\n" + value + "\n</plist>\n", limits);
}

TEST(PropertyListXMLTest, ValuesAreReadWithTheirKinds) {
  const std::pair<const char*, Value> cases[] = {
      {"<string> a &lt;&amp;&#x1F600;<![CDATA[<b>]]> </string>", " a <&\U0001F600<b> "},
      {"<string/>", ""},
      {"<integer> 42 </integer>", 42},
      {"<integer>-9223372036854775808</integer>", smallest<std::int64_t>},
      {"<integer>18446744073709551615</integer>", largest<std::uint64_t>},
      {"<integer>+0x1F</integer>", 31},
      {"<real>2.5e-3</real>", 0.0025},
      {"<real>+1</real>", 1.0},
      {"<real>-infinity</real>", -std::numeric_limits<double>::infinity()},
      {"<true/>", true},
      {"<false></false>", false},
      {"<date>2024-02-29T23:59:59Z</date>",
       Date(std::chrono::sys_days{2024y / 2 / 29} + 23h + 59min + 59s)},
      {"<data>\n\tYWJj\n\tZGU=\n</data>", Data(std::as_bytes(std::span("abcde", 5)))},
      {"<data>YQ</data>", Data(std::as_bytes(std::span("a", 1)))},
      {"<data/>", Data()},
      {"<array> <true/> <!-- a comment --> <array/> </array>", Value(Array{true, Value(Array{})})},
      {"<dict><key>a</key><integer>1</integer> <key/><dict/></dict>",
       Dictionary{{"a", 1}, {"", Dictionary()}}},
      {"<dict><key>CF$UID</key><real>1</real></dict>", Dictionary{{"CF$UID", 1.0}}},
      {"<dict><key>CF$UID</key><integer>-1</integer></dict>", Dictionary{{"CF$UID", -1}}},
  };
  for (const auto& [xml, expected] : cases) {
    const std::optional<Value> value = readXML(xml);
    EXPECT_EQ(value, expected) << xml;
    const auto* number = value ? value->as<Number>() : nullptr;
    EXPECT_TRUE(!number || number->kind() == expected.as<Number>()->kind()) << xml;
  }
  EXPECT_TRUE(std::isnan(readXML("<real>nan</real>")->as<Number>()->doubleValue()));
  EXPECT_EQ(
      PropertyListUID::numberIn(*readXML("<dict><key>CF$UID</key><integer>7</integer></dict>")),
      7U);
  for (const char* before : {"", "\xEF\xBB\xBF", " \r\n\t"}) {
    EXPECT_EQ(read(std::string(before) + "<plist><true/></plist>"), Value(true)) << before;
  }
  std::string utf16 = "\xFF\xFE";
  for (const char c : std::string("<plist><true/></plist>")) (utf16 += c) += '\0';
  EXPECT_EQ(read(utf16), Value(true));
}

TEST(PropertyListXMLTest, WhatIsNoListIsRefused) {
  for (const std::string& value : testing::words(R"(
           text <true/><true/> <truth/> <plist><true/></plist> <key>a</key> <true>x</true>
           <true><true/></true> <string><true/></string> <string> <string>&undefined;</string>
           <array>x</array> <array><key>a</key></array> <dict><key>a</key></dict>
           <dict><true/></dict> <dict><key>a</key><key>b</key><true/></dict>
           <dict><key>a</key><true/><false/></dict> <dict><key><true/></key><true/></dict>
           <dict><key>a</key><true/><key>a</key><true/></dict>
           <integer/> <integer>1.5</integer> <integer>-+1</integer> <integer>0x</integer>
           <integer>18446744073709551616</integer> <integer>-9223372036854775809</integer>
           <real/> <real>1,5</real> <real>+-1</real>
           <date>2024-02-30T00:00:00Z</date> <date>2024-02-03T24:00:00Z</date>
           <date>2024-02-03</date> <data>Y</data> <data>YW=j</data> <data>YWJ!</data>)")) {
    EXPECT_FALSE(readXML(value)) << value;
  }
  for (const char* value : {"", "<integer>- 1</integer>", "<string>\xFF</string>"}) {
    EXPECT_FALSE(readXML(value)) << value;
  }
  EXPECT_FALSE(read("<true/>"));
  EXPECT_FALSE(read(prologue + "<plist><true/></plist><plist/>"));
}

TEST(PropertyListXMLTest, ADocumentTypeDeclaresNothing) {
  const char* types[] = {
      "<!DOCTYPE plist [<!ENTITY a \"b\">]>",
      "<!DOCTYPE plist SYSTEM \"file:///etc/hostname\" [ ]>",
      "<!DOCTYPE plist [<!ENTITY % a SYSTEM \"file:///etc/hostname\"> %a;]>",
  };
  for (const char* type : types) {
    EXPECT_FALSE(read(std::string(type) + "<plist><true/></plist>")) << type;
  }
  EXPECT_TRUE(read("<!DOCTYPE plist SYSTEM \"file:///none.dtd\"><plist><true/></plist>"));
}

TEST(PropertyListXMLTest, LimitsBind) {
  const auto nested = [](int levels) {
    std::string value = "<true/>";
    for (int level = 1; level < levels; ++level) value.insert(0, "<array>").append("</array>");
    return value;
  };
  EXPECT_TRUE(readXML(nested(64)));
  EXPECT_FALSE(readXML(nested(65)));
  EXPECT_TRUE(readXML(nested(65), {.depth = 65}));
  EXPECT_FALSE(readXML(nested(20'000), {.depth = 1'000'000}));

  std::string many = "<array>";
  for (int i = 0; i < 1000; ++i) many += "<true/>";
  many += "</array>";
  EXPECT_TRUE(readXML(many, {.values = 1001}));
  EXPECT_FALSE(readXML(many, {.values = 1000}));
}

TEST(PropertyListXMLTest, ArchivesMayBeXML) {
  const std::string archive = prologue + R"(<plist version="1.0"><dict>
    <key>$archiver</key><string>NSKeyedArchiver</string>
    <key>$version</key><integer>100000</integer>
    <key>$top</key><dict><key>root</key><dict><key>CF$UID</key><integer>1</integer></dict></dict>
    <key>$objects</key><array><string>$null</string><string>root</string></array>
  </dict></plist>)";
  EXPECT_EQ(
      NSKeyedUnarchiver::unarchivedObjectOfClasses({"NSString"}, std::as_bytes(std::span(archive))),
      Value("root"));
}

}  // namespace
}  // namespace FrameworkUtility
