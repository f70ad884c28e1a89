#include <tools/kvtool/console/json.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <limits>

namespace kvtool {
namespace {

using namespace FrameworkUtility;

TEST(JsonTest, WritesEveryKindOfValue) {
  using std::chrono::sys_days;
  const auto bytes = [](std::string_view text) { return Data(std::as_bytes(std::span(text))); };
  const std::pair<Value, std::string_view> cases[] = {
      {Value(), "null"},
      {true, "true"},
      {-7, "-7"},
      {std::numeric_limits<std::uint64_t>::max(), "18446744073709551615"},
      {0.1, "0.1"},
      {1e300, "1e+300"},
      {204.840206185567, "204.840206185567"},
      {std::numeric_limits<double>::infinity(), "null"},
      {std::numeric_limits<double>::quiet_NaN(), "null"},
      {bytes(""), R"({"base64": ""})"},
      {bytes("a"), R"({"base64": "YQ=="})"},
      {bytes("ab"), R"({"base64": "YWI="})"},
      {bytes("abc\xFF"), R"({"base64": "YWJj/w=="})"},
      {Date(sys_days(std::chrono::year(2024) / 5 / 6) + std::chrono::milliseconds(999)),
       R"("2024-05-06T00:00:00Z")"},
      {Date(std::chrono::milliseconds(-1)), R"("1969-12-31T23:59:59Z")"},
      {URL::fileURLWithPath("/a b"), R"("file:///a%20b")"},
      {Value(Array{1, "b", Value(Array{})}), R"([1, "b", []])"},
      {Dictionary{{"17", 1}, {17, Dictionary()}}, R"({"17": 1, "17": {}})"},
  };
  for (const auto& [value, expected] : cases) EXPECT_EQ(json(value), expected);
}

TEST(JsonTest, EscapesTextsAndReplacesWhatIsNotUtf8) {
  using namespace std::string_view_literals;
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"Grüße \xF0\x9F\x98\x80", "\"Grüße \xF0\x9F\x98\x80\""},
      {"\"\\/"sv, R"("\"\\/")"},
      {"\0\n\x1B\x7F"sv, R"("\u0000\u000a\u001b\u007f")"},
      {"a\xFF\xFE", "\"a\uFFFD\uFFFD\""},
      {"\xE2\x82x", "\"\uFFFD\uFFFDx\""},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(jsonText(text), expected);
}

}  // namespace
}  // namespace kvtool
