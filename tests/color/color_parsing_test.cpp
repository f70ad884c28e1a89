#include <framework_utility/color/color_utility.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace FrameworkUtility {
namespace {

/// The colour as text, "none" without one.
std::string shown(const std::optional<UIColor>& color) {
  return color ? hexString(*color) : "none";
}

TEST(ColorParsingTest, HexadecimalTexts) {
  struct Case {
    std::string text;
    const char* expected;
  };
  for (const Case& c : {
           Case{"FF8000", "#FF8000"},
           Case{"#ff8000", "#FF8000"},
           Case{"#12345", "none"},
           Case{"1234567", "none"},
           Case{"##FF800", "#000000"},  // right length, nothing scanned
           Case{"", "none"},
           Case{"#", "none"},
           // The scanner skips white space and one prefix, and ends at the first other character.
           Case{"0xFF80", "#00FF80"},
           Case{"#0XFF80", "#00FF80"},
           Case{"0x0xFF", "#000000"},
           Case{" FF800", "#0FF800"},
           Case{"#\n\t FF8", "#000FF8"},
           Case{"\u3000\u200B\u2028FF8", "#000FF8"},
           Case{" 0xFF8", "#000FF8"},
           Case{"FF 800", "#0000FF"},
           Case{"-FF800", "#000000"},
           Case{"+FF800", "#000000"},
           Case{"12.345", "#000012"},
           Case{"orange", "#000000"},
           Case{std::string("FF\0FFF", 6), "#0000FF"},
           // Six units of UTF-16: digits of other scripts are none, and an emoji is two units.
           Case{"\uFF11\uFF12\uFF13\uFF14\uFF15\uFF16", "#000000"},
           Case{"\u0661\u0662\u0663\u0664\u0665\u0666", "#000000"},
           Case{"AB\U0001F3A8CD", "#0000AB"},
           Case{"\U0001F3A8\U0001F3A8\U0001F3A8", "#000000"},
           Case{"\U0001F3A8\U0001F3A8", "none"},
           Case{"h\u00E9l\u00E9", "none"},
           Case{"ABCDE\xFF", "none"},  // no UTF-8
           Case{"ABCDE\xC3", "none"},
           Case{std::string(1 << 20, 'A'), "none"},
       }) {
    SCOPED_TRACE(c.text.substr(0, 20));
    EXPECT_EQ(shown(colorFromHexString(c.text)), c.expected);
  }
  EXPECT_EQ(colorFromHexString("FF8000", 0.25), UIColor(1, 128 / 255.0, 0, 0.25));
  EXPECT_EQ(colorFromHexString("FF8000", 7), UIColor(1, 128 / 255.0, 0, 7)) << "as given";
}

TEST(ColorParsingTest, ListsOfComponents) {
  EXPECT_EQ(colorWithArray({255, 51.0, 0}), UIColor(1, 0.2, 0, 1));
  EXPECT_EQ(colorWithArray({"255", "+51.0", ".0", "-127.5"}), UIColor(1, 0.2, 0, -0.5));
  EXPECT_EQ(colorWithArray({510, -255, "51.", true}), UIColor(2, -1, 0.2, 1 / 255.0));

  for (const Array& list : {Array{}, Array{1, 2}, Array{1, 2, 3, 4, 5}, Array{1, 2, Value()},
                            Array{1, 2, Data()}, Array{1, 2, Value(Array{3})}}) {
    EXPECT_EQ(shown(colorWithArray(list)), "none") << Value(list).description();
  }
  for (const char* text : {"", "-", "+", ".", "-.", "1.2.3", "1e2", "0x10", "1,000", " 1", "1 ",
                           "12abc", "--1", "+-1", "inf", "nan", "\u0661", "1\n"}) {
    EXPECT_EQ(shown(colorWithArray({1, 2, text})), "none") << text;
  }
  EXPECT_EQ(shown(colorWithArray({1, 2, std::string(1000, '9')})), "none") << "beyond a double";
}

TEST(ColorParsingTest, Objects) {
  struct Case {
    std::string text;
    const char* expected;
  };
  for (const Case& c : {
           Case{"#FF8000", "#FF8000"},
           Case{"255 0 0", "#FF0000"},
           Case{"255 128 0 0.5", "#FF8000"},
           Case{"255\u00A0128\u200B7", "#FF8007"},
           // What can be hexadecimal is: these are six characters long.
           Case{"10 0 0", "#000010"},
           Case{"1 2 34", "#000001"},
           // A line break does not split, and an empty piece is no number.
           Case{"255\n128\n7", "none"},
           Case{"255  128 7", "none"},
           Case{" 255 128 7", "none"},
           Case{"255 128 7 ", "none"},
           Case{"255 128 7 255 ", "none"},
           Case{"255 128", "none"},
           Case{"255 128 7 1 2", "none"},
           Case{"255 128 \U0001F3A8", "none"},
           Case{"255 128 \xFF", "none"},
           Case{"", "none"},
           Case{std::string(1 << 20, ' '), "none"},
       }) {
    SCOPED_TRACE(c.text.substr(0, 20));
    EXPECT_EQ(shown(colorWithObject(Value(c.text))), c.expected);
  }
  EXPECT_EQ(colorWithObject(Value("255 128 0 51")), UIColor(1, 128 / 255.0, 0, 0.2));
  EXPECT_EQ(shown(colorWithObject(Value(Array{255, 0, "128"}))), "#FF0080");
  for (const Value& value : {Value(), Value(255), Value(Dictionary{{"red", 1}}), Value(Data())}) {
    EXPECT_EQ(shown(colorWithObject(value)), "none") << value.description();
  }
  EXPECT_EQ(shown(colorWithObject(std::nullopt)), "none");
}

}  // namespace
}  // namespace FrameworkUtility
