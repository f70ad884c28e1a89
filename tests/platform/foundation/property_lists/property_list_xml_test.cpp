#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>
#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <tests/support/words.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <string>

namespace FrameworkUtility {
namespace {

using namespace std::chrono_literals;

const std::string prologue =
    R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
)";

std::optional<Value> readBytes(const std::string& bytes, const PropertyListLimits& limits = {}) {
  Error error;
  std::optional<Value> value =
      propertyListWithData(std::as_bytes(std::span(bytes)), limits, &error);
  EXPECT_TRUE(value || error.is(PropertyListError::readCorrupt)) << error;
  return value;
}

std::optional<Value> read(const std::string& value, const PropertyListLimits& limits = {}) {
  return readBytes(prologue + "<plist version=\"1.0\">\n" + value + "\n</plist>\n", limits);
}

TEST(PropertyListXMLTest, ValuesAreReadWithTheirKinds) {
  const std::pair<const char*, Value> cases[] = {
      {"<string> a &lt;&amp;&#x1F600;<![CDATA[<b>]]> </string>", " a <&\U0001F600<b> "},
      {"<string/>", ""},
      {"<integer> 42 </integer>", 42},
      {"<integer>-9223372036854775808</integer>", std::numeric_limits<std::int64_t>::min()},
      {"<integer>18446744073709551615</integer>", std::numeric_limits<std::uint64_t>::max()},
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
    const std::optional<Value> value = read(xml);
    EXPECT_EQ(value, expected) << xml;
    const auto* number = value ? value->as<Number>() : nullptr;
    EXPECT_TRUE(!number || number->kind() == expected.as<Number>()->kind()) << xml;
  }
  EXPECT_TRUE(std::isnan(read("<real>nan</real>")->as<Number>()->doubleValue()));
  EXPECT_EQ(PropertyListUID::numberIn(*read("<dict><key>CF$UID</key><integer>7</integer></dict>")),
            7U);
  for (const char* before : {"", "\xEF\xBB\xBF", " \r\n\t"}) {
    EXPECT_EQ(readBytes(std::string(before) + "<plist><true/></plist>"), Value(true)) << before;
  }
  std::string utf16 = "\xFF\xFE";
  for (const char c : std::string("<plist><true/></plist>")) (utf16 += c) += '\0';
  EXPECT_EQ(readBytes(utf16), Value(true));
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
    EXPECT_FALSE(read(value)) << value;
  }
  for (const char* value : {"", "<integer>- 1</integer>", "<string>\xFF</string>"}) {
    EXPECT_FALSE(read(value)) << value;
  }
  EXPECT_FALSE(readBytes("<true/>"));
  EXPECT_FALSE(readBytes(prologue + "<plist><true/></plist><plist/>"));
}

TEST(PropertyListXMLTest, ADocumentTypeDeclaresNothing) {
  const char* types[] = {
      "<!DOCTYPE plist [<!ENTITY a \"b\">]>",
      "<!DOCTYPE plist SYSTEM \"file:///etc/hostname\" [ ]>",
      "<!DOCTYPE plist [<!ENTITY % a SYSTEM \"file:///etc/hostname\"> %a;]>",
  };
  for (const char* type : types) {
    EXPECT_FALSE(readBytes(std::string(type) + "<plist><true/></plist>")) << type;
  }
  EXPECT_TRUE(readBytes("<!DOCTYPE plist SYSTEM \"file:///none.dtd\"><plist><true/></plist>"));
}

TEST(PropertyListXMLTest, LimitsBind) {
  const auto nested = [](int levels) {
    std::string value = "<true/>";
    for (int level = 1; level < levels; ++level) value.insert(0, "<array>").append("</array>");
    return value;
  };
  EXPECT_TRUE(read(nested(64)));
  EXPECT_FALSE(read(nested(65)));
  EXPECT_TRUE(read(nested(65), {.depth = 65}));
  EXPECT_FALSE(read(nested(20'000), {.depth = 1'000'000}));

  std::string many = "<array>";
  for (int i = 0; i < 1000; ++i) many += "<true/>";
  many += "</array>";
  EXPECT_TRUE(read(many, {.values = 1001}));
  EXPECT_FALSE(read(many, {.values = 1000}));
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
