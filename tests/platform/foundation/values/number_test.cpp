#include <framework_utility/platform/foundation/values/number.h>
#include <framework_utility/platform/foundation/values/number_text.h>
#include <framework_utility/platform/foundation/values/random.h>
#include <tests/support/words.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <regex>
#include <set>
#include <tuple>
#include <utility>

namespace FrameworkUtility {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t largestUnsigned = std::numeric_limits<std::uint64_t>::max();

TEST(NumberTest, EqualByValueOverAllKinds) {
  for (const auto& [a, b] : {std::pair<Number, Number>{1, 1.0},
                             {true, 1ULL},
                             {0, -0.0},
                             {0.5f, 0.5},
                             {smallest, -0x1p63},
                             {0x8000000000000000, 0x1p63},
                             {largest, 0x7FFFFFFFFFFFFFFFULL}}) {
    EXPECT_EQ(a, b);
  }
}

TEST(NumberTest, NothingIsRoundedBeforeTheComparison) {
  // clang-format off
  const Number ascending[] = {
      -infinity, -0x1.0000000000001p63, smallest, -1.5, -1, -0x1p-1074, 0, 0.5f, true, 1.5,
      0xFFFFFFFFu, 0x1p53, 0x20000000000001, largest, 0x1p63, 0x8000000000000001, largestUnsigned,
      0x1p64, infinity};
  // clang-format on
  for (const Number& b : ascending) {
    for (const Number& a : ascending) {
      EXPECT_EQ(a <=> b, &a <=> &b) << a << ' ' << b;
      EXPECT_EQ(a == b, &a == &b) << a << ' ' << b;
    }
    for (const auto& [a, c] : {std::pair{b, Number(nan)}, {nan, b}, {nan, nan}}) {
      EXPECT_EQ(a <=> c, std::partial_ordering::unordered) << a << ' ' << c;
    }
  }
  EXPECT_FALSE(Number(nan) == Number(nan));
}

TEST(NumberTest, IntegersAreTruncatedTowardsZeroOrTheLow32Bits) {
  for (const auto& [number, integer, low] :
       {std::tuple<Number, std::int64_t, std::uint32_t>{-2.9, -2, 0xFFFFFFFE},
        {-1, -1, 0xFFFFFFFF},
        {-0x1p63, smallest, 0},
        {true, 1, 1},
        {0x1p32 + 9.5, 0x100000009, 9}}) {
    EXPECT_EQ(number.integerValue(), integer);
    EXPECT_EQ(number.unsignedIntValue(), low) << number;
  }
  EXPECT_EQ(Number(1e300).unsignedIntValue(), 0u);
  EXPECT_EQ(Number(largestUnsigned).unsignedIntValue(), 0xFFFFFFFFu);
  for (const Number& number : {Number(nan), Number(infinity), Number(0x1p63), Number(-0x1.1p63),
                               Number(largestUnsigned)}) {
    EXPECT_DEATH(std::ignore = number.integerValue(), "integer value") << number;
  }
  EXPECT_DEATH(std::ignore = Number(nan).unsignedIntValue(), "not finite");
}

TEST(NumberTest, TruthIsDifferenceFromZeroAndTheTextShowsWhatItWasMadeFrom) {
  struct Case {
    Number number;
    bool truth;
    const char* text;
  };
  for (const Case& c : {Case{6, true, "6"}, Case{6.0, true, "6.0"}, Case{true, true, "1"},
                        Case{false, false, "0"}, Case{-0.0, false, "-0.0"}, Case{nan, true, "nan"},
                        Case{-1, true, "-1"}, Case{0.1, true, "0.1"}, Case{0.5f, true, "0.5"},
                        Case{largestUnsigned, true, "18446744073709551615"},
                        Case{smallest, true, "-9223372036854775808"}}) {
    EXPECT_EQ(c.number.boolValue(), c.truth) << c.text;
    EXPECT_EQ(c.number.description(), c.text);
  }
}

TEST(NumberTextTest, PlainInTheMiddleAndScientificOutside) {
  for (const std::string& text : testing::words(R"(
           0.0 -0.0 10.0 100000.0 -123456.75 0.0001 9.999999999999999e-05 1e-05 9007199254740991.0
           9007199254740992.0 -9007199254740992.0 9.007199254740994e+15 1.25e+17 -1e+100 5e-324
           inf -inf nan)")) {
    EXPECT_EQ(textOfDouble(std::strtod(text.c_str(), nullptr)), text);
  }
  EXPECT_EQ(textOfDouble(std::copysign(nan, -1)), "nan");
}

TEST(NumberTextTest, FixedDecimalsRoundCorrectly) {
  EXPECT_EQ(textOfDouble(0.25, 1), "0.2");
  EXPECT_EQ(textOfDouble(0.35, 1), "0.3");  // the double is below
  EXPECT_EQ(textOfDouble(-0.04, 1), "-0.0");
  EXPECT_EQ(textOfDouble(1e23, 2), "99999999999999991611392.00");
  EXPECT_EQ(textOfDouble(std::numeric_limits<double>::lowest(), 1).size(), 312u);
  EXPECT_EQ(textOfDouble(-nan, 1), "nan");
}

TEST(RandomTest, IdentifiersAreUpperCaseVersion4AndDiffer) {
  const std::regex form("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}");
  std::set<std::string> seen;
  for (int i = 0; i < 200; ++i) {
    EXPECT_TRUE(std::regex_match(*seen.insert(newUUIDString()).first, form));
  }
  EXPECT_EQ(seen.size(), 200u);
}

}  // namespace
}  // namespace FrameworkUtility
