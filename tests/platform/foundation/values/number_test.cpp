#include <framework_utility/platform/foundation/values/number.h>
#include <framework_utility/platform/foundation/values/number_text.h>
#include <framework_utility/platform/foundation/values/random.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <set>

namespace FrameworkUtility {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t smallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
constexpr std::uint64_t largestUnsigned = std::numeric_limits<std::uint64_t>::max();

TEST(NumberTest, EqualByValueOverAllKinds) {
  EXPECT_EQ(Number(1), Number(1.0));
  EXPECT_EQ(Number(true), Number(1ULL));
  EXPECT_EQ(Number(0), Number(-0.0));
  EXPECT_EQ(Number(0.5f), Number(0.5));
  EXPECT_EQ(Number(smallest), Number(-0x1p63));
  EXPECT_EQ(Number(std::uint64_t{1} << 63), Number(0x1p63));
  EXPECT_EQ(Number(largest), Number(static_cast<std::uint64_t>(largest)));
}

TEST(NumberTest, NothingIsRoundedBeforeTheComparison) {
  const Number ascending[] = {-infinity,
                              -0x1.0000000000001p63,
                              smallest,
                              -1.5,
                              -1,
                              -0x1p-1074,
                              0,
                              0.5f,
                              true,
                              1.5,
                              0xFFFFFFFFu,
                              0x1p53,
                              (std::int64_t{1} << 53) + 1,
                              largest,
                              0x1p63,
                              (std::uint64_t{1} << 63) + 1,
                              largestUnsigned,
                              0x1p64,
                              infinity};
  for (const Number& b : ascending) {
    for (const Number& a : ascending) {
      EXPECT_EQ(a < b, &a < &b) << a << ' ' << b;
      EXPECT_EQ(a > b, &a > &b) << a << ' ' << b;
      EXPECT_EQ(a == b, &a == &b) << a << ' ' << b;
      EXPECT_EQ(a <= b, &a <= &b) << a << ' ' << b;
    }
    for (const auto& [a, c] : {std::pair{b, Number(nan)}, {nan, b}, {nan, nan}}) {
      EXPECT_EQ(a <=> c, std::partial_ordering::unordered) << a << ' ' << c;
    }
  }
  EXPECT_FALSE(Number(nan) == Number(nan));
}

TEST(NumberTest, IntegersAreTruncatedTowardsZero) {
  EXPECT_EQ(Number(-2.9).integerValue(), -2);
  EXPECT_EQ(Number(-0x1p63).integerValue(), smallest);
  EXPECT_EQ(Number(true).integerValue(), 1);
  for (const Number& number : {Number(nan), Number(infinity), Number(0x1p63), Number(-0x1.1p63),
                               Number(largestUnsigned)}) {
    SCOPED_TRACE(number);
    EXPECT_DEATH(std::ignore = number.integerValue(), "integer value");
  }
}

TEST(NumberTest, UnsignedIntegersAreTheLow32Bits) {
  EXPECT_EQ(Number(-1).unsignedIntValue(), 0xFFFFFFFFu);
  EXPECT_EQ(Number(-1.9).unsignedIntValue(), 0xFFFFFFFFu);
  EXPECT_EQ(Number(0x1p32 + 9.5).unsignedIntValue(), 9u);
  EXPECT_EQ(Number(1e300).unsignedIntValue(), 0u);
  EXPECT_EQ(Number(largestUnsigned).unsignedIntValue(), 0xFFFFFFFFu);
  EXPECT_DEATH(std::ignore = Number(nan).unsignedIntValue(), "not finite");
}

TEST(NumberTest, TruthIsDifferenceFromZero) {
  EXPECT_FALSE(Number(-0.0).boolValue());
  EXPECT_TRUE(Number(0.1).boolValue());
  EXPECT_TRUE(Number(nan).boolValue());
  EXPECT_TRUE(Number(-1).boolValue());
}

TEST(NumberTest, ItsTextShowsWhatItWasMadeFrom) {
  const std::pair<Number, const char*> cases[] = {
      {6, "6"},      {6.0, "6.0"},
      {true, "1"},   {-1, "-1"},
      {0.1, "0.1"},  {largestUnsigned, "18446744073709551615"},
      {0.5f, "0.5"}, {smallest, "-9223372036854775808"},
  };
  for (const auto& [number, text] : cases) EXPECT_EQ(number.description(), text);
}

TEST(NumberTextTest, PlainInTheMiddleAndScientificOutside) {
  const std::pair<double, const char*> cases[] = {
      {0.0, "0.0"},
      {-0.0, "-0.0"},
      {10, "10.0"},
      {100000, "100000.0"},
      {-123456.75, "-123456.75"},
      {1e-4, "0.0001"},
      {std::nextafter(1e-4, 0), "9.999999999999999e-05"},
      {1e-5, "1e-05"},
      {9007199254740991, "9007199254740991.0"},
      {9007199254740992, "9007199254740992.0"},
      {-9007199254740992, "-9007199254740992.0"},
      {9007199254740994, "9.007199254740994e+15"},
      {1.25e17, "1.25e+17"},
      {-1e100, "-1e+100"},
      {5e-324, "5e-324"},
      {infinity, "inf"},
      {-infinity, "-inf"},
      {nan, "nan"},
      {std::copysign(nan, -1), "nan"},
  };
  for (const auto& [value, text] : cases) EXPECT_EQ(textOfDouble(value), text);
}

TEST(NumberTextTest, FixedDecimalsRoundCorrectly) {
  EXPECT_EQ(textOfDouble(2, 1), "2.0");
  EXPECT_EQ(textOfDouble(0.25, 1), "0.2");
  EXPECT_EQ(textOfDouble(0.35, 1), "0.3");  // the double is below
  EXPECT_EQ(textOfDouble(-0.04, 1), "-0.0");
  EXPECT_EQ(textOfDouble(1e23, 2), "99999999999999991611392.00");
  EXPECT_EQ(textOfDouble(std::numeric_limits<double>::lowest(), 1).size(), 312u);
  EXPECT_EQ(textOfDouble(-std::numeric_limits<double>::quiet_NaN(), 1), "nan");
}

TEST(NumberTextTest, ReadsBackAsTheSameDouble) {
  for (int i = 0; i < 20'000; ++i) {
    const std::uint64_t bits =
        std::uint64_t{randomUnsignedInteger()} << 32 | randomUnsignedInteger();
    const double value = std::bit_cast<double>(bits);
    if (!std::isfinite(value)) continue;
    const std::string text = textOfDouble(value);
    ASSERT_EQ(std::bit_cast<std::uint64_t>(std::strtod(text.c_str(), nullptr)), bits) << text;
  }
}

TEST(RandomTest, IdentifiersAreUpperCaseVersion4AndDiffer) {
  std::set<std::string> seen;
  for (int i = 0; i < 200; ++i) {
    const std::string identifier = newUUIDString();
    EXPECT_THAT(identifier, ::testing::MatchesRegex(
                                "[0-9A-F]+-[0-9A-F]+-4[0-9A-F]+-[89AB][0-9A-F]+-[0-9A-F]+"));
    EXPECT_EQ(identifier.size(), 36u);
    for (const std::size_t hyphen : {8u, 13u, 18u, 23u}) EXPECT_EQ(identifier[hyphen], '-');
    seen.insert(identifier);
  }
  EXPECT_EQ(seen.size(), 200u);
}

}  // namespace
}  // namespace FrameworkUtility
