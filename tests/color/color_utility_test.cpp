#include <framework_utility/color/color_utility.h>
#include <framework_utility/color/hsl.h>

#include <gtest/gtest.h>

#include <array>
#include <initializer_list>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace FrameworkUtility {
namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(ColorUtilityTest, HexadecimalTextRoundsInSinglePrecision) {
  EXPECT_EQ(hexString(UIColor(0.999, 0, 0, 1)), "#FF0000");
  EXPECT_EQ(KvColor(0.999, 0, 0).hexString(), "#FE0000") << "this one truncates, on purpose";
  // 127.49999745 is 127.5 in single precision.
  EXPECT_EQ(hexString(UIColor(0.49999999, 0.5 / 255, 0.499 / 255, 0)), "#800100");
  EXPECT_EQ(hexString(UIColor(2, 17, 0, 1)), "#1FE10EF00");
  EXPECT_EQ(hexString(UIColor(-1 / 255.0, 0, 0, 1)), "#FFFFFFFFFFFFFFFF0000");
  for (int i = 0; i < 256; ++i) {
    const UIColor grey(i / 255.0, i / 255.0, i / 255.0, 1);
    EXPECT_EQ(colorFromHexString(hexString(grey)), grey) << i;
  }
}

TEST(ColorUtilityDeathTest, HexadecimalTextStopsAtWhatIsNoInteger) {
  for (const double component : {nan, 1 / 0.0, -1 / 0.0, 1e300, -1e17, 0x1p63 / 255}) {
    EXPECT_DEATH((void)hexString(UIColor(0, component, 0, 1)), "not finite, or too large");
  }
}

TEST(ColorUtilityTest, RatiosWeightTheReceiver) {
  const UIColor black(0, 0, 0, 1);
  const UIColor white(1, 1, 1, 0);
  EXPECT_EQ(interpolateWithColor(black, white, 0.25), UIColor(0.75, 0.75, 0.75, 0.25));
  EXPECT_EQ(KvColor(black).interpolateWithColorWithColor(KvColor(white), 0.25).red, 0.25)
      << "the other way round, on purpose";
  EXPECT_EQ(interpolateWithColor(black, std::nullopt, 0.25), std::nullopt);

  // At the ends a dynamic colour stays what it is; in between it is no longer.
  const UIColor dynamic = UIColor::withDynamicProvider([=](auto) { return white; });
  for (const double ratio : {0.0, -3.0, epsilon}) {
    EXPECT_EQ(interpolateWithColor(black, dynamic, ratio), dynamic);
  }
  for (const double ratio : {1.0, 3.0, 1 - epsilon}) {
    EXPECT_EQ(interpolateWithColor(dynamic, black, ratio), dynamic);
  }
  EXPECT_EQ(interpolateWithColor(dynamic, black, 0.5), UIColor(0.5, 0.5, 0.5, 0.5));
  EXPECT_EQ(interpolateWithColor(dynamic, white, 2 * epsilon), white);

  EXPECT_EQ(interpolateColor({1, 0, 0.5, 1}, {0, 1, 0.5, 0}, 3), (RGBA{3, -2, 0.5, 3}))
      << "neither clamped nor cut short";
}

TEST(ColorUtilityTest, Arithmetic) {
  const UIColor color(0.25, 0.5, 1, 0.125);
  EXPECT_EQ(colorInverted(color), UIColor(0.75, 0.5, 0, 0.125));
  EXPECT_EQ(addIntensity(color, 0.5), UIColor(0.75, 1, 1, 0.125));
  EXPECT_EQ(addIntensity(UIColor(0.25, 0.5, 1, 7), -0.5), UIColor(0, 0, 0.5, 7)) << "alpha is kept";
  EXPECT_EQ(multiplySaturationBy(UIColor(0.5, 0.5, 0.5, 7), 3), UIColor(0.5, 0.5, 0.5, 7));
  EXPECT_EQ(hslToUIColor({0, 1, 0.5}, 7), UIColor(1, 0, 0, 7));
  EXPECT_EQ(kvColor(UIColor(2, -1, 0.5, 3)).identifier(), "100.0.50.100");
}

TEST(ColorUtilityTest, AlphaPredicatesHaveTheirOwnBounds) {
  const auto ofAlpha = [](double alpha) { return UIColor(0, 0, 0, alpha); };
  EXPECT_TRUE(isClearColor(ofAlpha(epsilon)));
  EXPECT_FALSE(isClearColor(ofAlpha(2 * epsilon)));
  EXPECT_FALSE(isClearColor(ofAlpha(nan)));
  // The double below 1 is opaque to KvColor alone.
  const UIColor nearly = ofAlpha(1 - epsilon / 2);
  EXPECT_FALSE(isOpaque(nearly));
  EXPECT_TRUE(KvColor(nearly).isOpaque());
  EXPECT_TRUE(isOpaque(ofAlpha(1)));
  EXPECT_FALSE(isOpaque(ofAlpha(nan)));
}

TEST(ColorUtilityTest, RandomColoursNeverReachOne) {
  std::set<double> seen;
  for (int i = 0; i < 20'000; ++i) {
    const RGBA color = randomColor(0.5).getRedGreenBlueAlpha();
    for (const double component : {color.red, color.green, color.blue}) seen.insert(component);
    EXPECT_EQ(color.alpha, 0.5);
  }
  // All of 0/255 to 254/255: 60,000 draws miss one with a chance of 1e-99.
  EXPECT_EQ(seen.size(), 255);
  EXPECT_EQ(*seen.begin(), 0);
  EXPECT_EQ(*seen.rbegin(), 254 / 255.0);
  EXPECT_EQ(randomColor().getRedGreenBlueAlpha().alpha, 1);
}

/// The colour as text, "none" without one.
std::string shown(const std::optional<UIColor>& color) {
  return color ? hexString(*color) : "none";
}

TEST(ColorParsingTest, HexadecimalTexts) {
  const std::pair<std::string, const char*> cases[] = {
      {"FF8000", "#FF8000"},
      {"#09afAF", "#09AFAF"},
      // The scanner skips white space and one prefix, and ends at the first other character.
      {"0xFF80", "#00FF80"},
      {"#0XFF80", "#00FF80"},
      {" FF800", "#0FF800"},
      {"#\n\t FF8", "#000FF8"},
      {"\u3000\u200B\u2028FF8", "#000FF8"},
      {" 0xFF8", "#000FF8"},
      {"FF 800", "#0000FF"},
      {"12.345", "#000012"},
      {std::string("FF\0FFF", 6), "#0000FF"},
      {"AB\U0001F3A8CD", "#0000AB"}};
  for (const auto& [text, color] : cases) EXPECT_EQ(shown(colorFromHexString(text)), color) << text;
  // Six units of UTF-16, of which none is scanned; digits of other scripts are none.
  for (const char* text :
       {"##FF800", "0x0xFF", "-FF800", "+FF800", "orange", "/:@G`g",
        "\uFF11\uFF12\uFF13\uFF14\uFF15\uFF16", "\u0661\u0662\u0663\u0664\u0665\u0666",
        "\U0001F3A8\U0001F3A8\U0001F3A8"}) {
    EXPECT_EQ(shown(colorFromHexString(text)), "#000000") << text;
  }
  for (const std::string& text :
       {std::string(), std::string("#"), std::string("#12345"), std::string("1234567"),
        std::string("\U0001F3A8\U0001F3A8"), std::string("h\u00E9l\u00E9"),
        std::string("ABCDE\xFF"), std::string("ABCDE\xC3"), std::string(1 << 20, 'A')}) {
    EXPECT_EQ(shown(colorFromHexString(text)), "none") << text.substr(0, 20);
  }
  EXPECT_EQ(colorFromHexString("FF8000", 7), UIColor(1, 128 / 255.0, 0, 7)) << "alpha as given";
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
  const std::pair<Value, const char*> cases[] = {
      {"#FF8000", "#FF8000"},
      {"255 0 0", "#FF0000"},
      {"255 128 0 0.5", "#FF8000"},
      {"255\u00A0128\u200B7", "#FF8007"},
      {Value(Array{255, 0, "128"}), "#FF0080"},
      // What can be hexadecimal is: these are six characters long.
      {"10 0 0", "#000010"},
      {"1 2 34", "#000001"}};
  for (const auto& [object, color] : cases) EXPECT_EQ(shown(colorWithObject(object)), color);
  EXPECT_EQ(colorWithObject(Value("255 128 0 51")), UIColor(1, 128 / 255.0, 0, 0.2));
  // A line break does not split, and an empty piece is no number.
  for (const Value& object : {Value("255\n128\n7"), Value("255  128 7"), Value(" 255 128 7"),
                              Value("255 128 7 "), Value("255 128 7 255 "), Value("255 128"),
                              Value("255 128 7 1 2"), Value("255 128 \U0001F3A8"),
                              Value("255 128 \xFF"), Value(""), Value(std::string(1 << 20, ' ')),
                              Value(), Value(255), Value(Dictionary{{"red", 1}}), Value(Data())}) {
    EXPECT_EQ(shown(colorWithObject(object)), "none") << object.description().substr(0, 20);
  }
  EXPECT_EQ(shown(colorWithObject(std::nullopt)), "none");
}

void expectNear(const RGB& found, const RGB& expected, double tolerance) {
  EXPECT_NEAR(found.red, expected.red, tolerance);
  EXPECT_NEAR(found.green, expected.green, tolerance);
  EXPECT_NEAR(found.blue, expected.blue, tolerance);
}

TEST(HslTest, KnownColoursBothWays) {
  struct Case {
    const char* name;
    RGB rgb;
    HSL hsl;
  };
  for (const Case& c : {
           Case{"black", {0, 0, 0}, {0, 0, 0}},
           Case{"white", {1, 1, 1}, {0, 0, 1}},
           Case{"grey", {0.5, 0.5, 0.5}, {0, 0, 0.5}},
           Case{"red", {1, 0, 0}, {0, 1, 0.5}},
           Case{"yellow", {1, 1, 0}, {1.0 / 6, 1, 0.5}},
           Case{"lime", {0.92, 1, 0}, {0.18, 1, 0.5}},
           Case{"green", {0, 0.5, 0}, {1.0 / 3, 1, 0.25}},
           Case{"cyan", {0, 1, 1}, {0.5, 1, 0.5}},
           Case{"blue", {0, 0, 1}, {2.0 / 3, 1, 0.5}},
           Case{"magenta", {1, 0, 1}, {5.0 / 6, 1, 0.5}},
           Case{"rose", {1, 0, 0.5}, {11.0 / 12, 1, 0.5}},
           Case{"pale orange", {1, 0.75, 0.5}, {1.0 / 12, 1, 0.75}},
           Case{"dull blue", {0.25, 0.375, 0.5}, {7.0 / 12, 1.0 / 3, 0.375}},
       }) {
    SCOPED_TRACE(c.name);
    const HSL found = rgbToHsl(c.rgb);
    EXPECT_NEAR(found.hue, c.hsl.hue, 1e-15);
    EXPECT_NEAR(found.saturation, c.hsl.saturation, 1e-15);
    EXPECT_NEAR(found.lightness, c.hsl.lightness, 1e-15);
    expectNear(hslToRgb(c.hsl), c.rgb, 1e-14);
  }
}

TEST(HslTest, HuesBeyondTheCircleTakeOneTurnAlone) {
  expectNear(hslToRgb({1, 1, 0.5}), {1, 0, 0}, 1e-14);
  expectNear(hslToRgb({-0.25, 1, 0.5}), hslToRgb({0.75, 1, 0.5}), 1e-14);
  // Saturation below 2.2e-16 is none, negative too.
  EXPECT_EQ(hslToRgb({0.3, 2e-16, 0.25}), (RGB{0.25, 0.25, 0.25}));
  EXPECT_EQ(hslToRgb({0.3, -1, 0.25}), (RGB{0.25, 0.25, 0.25}));
}

TEST(HslTest, TheBoostMovesMediumSaturationMost) {
  for (const auto& [saturation, by, boosted] : std::initializer_list<std::array<double, 3>>{
           {0, 7, 0}, {1, 7, 1}, {1, -0.5, 1}, {0.5, 0.4, 0.6}, {0.25, -0.4, 0.175}, {0.5, 7, 1}}) {
    EXPECT_NEAR(saturationMultipliedBy(saturation, by), boosted, 1e-14);
  }
  EXPECT_EQ(rgbToHsl(multiplySaturationOf({0.75, 0.5, 0.25}, 1)).saturation, 0.75);
  EXPECT_EQ(multiplySaturationOf({0.5, 0.5, 0.5}, 9), (RGB{0.5, 0.5, 0.5}));
}

}  // namespace
}  // namespace FrameworkUtility
