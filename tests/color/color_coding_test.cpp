#include <framework_utility/color/color_transformer.h>
#include <framework_utility/errors/archive_error.h>
#include <framework_utility/platform/foundation/archives/coder_error.h>
#include <framework_utility/platform/foundation/archives/keyed_archiver.h>

#include <tests/support/archives.h>
#include <tests/support/is_error.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace FrameworkUtility {
namespace {

using testing::archiveOf;
using testing::archiveOfObject;
using testing::classRecord;
using ::testing::ElementsAre;
using testing::IsError;
using testing::reference;

constexpr const char* qualified = "FrameworkUtility.KvColor";

std::optional<KvColor> decoded(const Dictionary& parts, const std::string& className = qualified) {
  return KvColor::unarchivedData(archiveOfObject(parts, className));
}

/// Exactly, where `==` would compare hundredths.
RGBA componentsOf(const std::optional<KvColor>& color) {
  return color.value().cgColor().components;
}

TEST(ColorCodingTest, WritesFourFloats) {
  const std::optional<Data> data = KvColor(0.1, 0.25, 1, 0.75).archivedData();
  ASSERT_TRUE(data);
  const auto list = propertyListWithData(*data);
  ASSERT_TRUE(list && list->as<Dictionary>());
  const auto* objects = list->as<Dictionary>()->get<Array>("$objects");
  ASSERT_TRUE(objects && objects->size() == 3);
  Dictionary color = *objects->at(1).as<Dictionary>();
  EXPECT_TRUE(color.get<Number>("G") && color.get<Number>("G")->isSinglePrecision());
  color.remove("$class");
  EXPECT_EQ(color, (Dictionary{{"R", 0.1F}, {"G", 0.25F}, {"B", 1.0F}, {"A", 0.75F}}));
  EXPECT_EQ(objects->at(2), classRecord(qualified));
}

TEST(ColorCodingTest, ComesBackInSinglePrecisionAndWithoutVariants) {
  const auto again = [](const KvColor& color) {
    return KvColor::unarchivedData(color.archivedData());
  };
  EXPECT_EQ(again(KvColor(0.1, 0, 0)).value().red, 0.1F);
  EXPECT_NE(again(KvColor::withWhite(0.01, 1)), KvColor::withWhite(0.01, 1))
      << "a hundredth less; it is meant";
  for (int i = 0; i <= 255; ++i) {
    const KvColor color(i / 255.0, 0, (255 - i) / 255.0);
    EXPECT_EQ(again(color), color) << i;
  }
  EXPECT_FALSE(again(KvColor::whiteColorDarkModeEnabledWithWhite(0.25, 1))->others);

  KvColor wide = KvColor::blackColor();
  wide.red = -3;
  wide.green = 1e300;
  wide.blue = std::nan("");
  const auto read = again(wide);
  ASSERT_TRUE(read);
  EXPECT_EQ(read->red, -3) << "not clamped";
  EXPECT_EQ(read->green, std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(read->blue));
}

TEST(ColorCodingTest, ReadsArchivesWrittenByHand) {
  const Dictionary rgb{{"R", 0.5F}, {"G", 0.25F}, {"B", 2.0F}};
  // The class's name with its module, without it, and mangled.
  for (const char* name : {qualified, "KvColor", "_TtC16FrameworkUtility7KvColor"}) {
    EXPECT_EQ(componentsOf(decoded(rgb, name)), (RGBA{0.5, 0.25, 2, 1})) << name;
  }
  EXPECT_EQ(componentsOf(decoded({{"R", 0.5}, {"G", 0.1}, {"B", 1.0}, {"A", -0.25}})),
            (RGBA{0.5, 0.1F, 1, -0.25}));

  const Dictionary hsl{{"H", 0.0F}, {"S", 1.0F}, {"L", 0.5F}};
  EXPECT_EQ(componentsOf(decoded(hsl)), (RGBA{1, 0, 0, 1}));
  // Red, green and blue win; where one of them is missing the others count for nothing.
  const auto joined = [](Dictionary a, const Dictionary& b) {
    for (const auto& [key, value] : b) a.set(key, value);
    return a;
  };
  EXPECT_EQ(componentsOf(decoded(joined(hsl, rgb))), (RGBA{0.5, 0.25, 2, 1}));
  for (const char* missing : {"R", "G", "B"}) {
    Dictionary two = joined(hsl, {{"R", 0.1F}, {"G", 0.25F}, {"B", 0.5F}, {"A", 0.5F}});
    two.remove(missing);
    EXPECT_EQ(componentsOf(decoded(two)), (RGBA{1, 0, 0, 0.5})) << missing;
  }
}

TEST(ColorCodingTest, FailuresHaveTheirCodes) {
  const auto expectError = [](const char* what, const std::optional<Data>& data,
                              const ErrorCode& expected, const std::optional<ErrorCode>& cause) {
    SCOPED_TRACE(what);
    Error error;
    EXPECT_FALSE(KvColor::unarchivedData(data, &error));
    EXPECT_THAT(error, IsError(expected));
    const std::optional<Error> found = error.underlyingError();
    EXPECT_EQ(found.has_value(), cause.has_value());
    EXPECT_TRUE(!found || !cause || found->is(*cause));
  };
  expectError("no data", std::nullopt, ArchiveError::dataIsNil, std::nullopt);

  const auto withRed = [](const Value& red) {
    return archiveOfObject({{"R", red}, {"G", 0.25F}, {"B", 0.5F}}, qualified);
  };
  const Dictionary rgb{{"R", 0.5F}, {"G", 0.25F}, {"B", 0.0F}};
  const std::pair<const char*, Data> corrupt[] = {
      {"empty", Data()},
      {"no archive", *dataWithPropertyList(rgb)},
      {"another class", archiveOfObject(rgb, "NSURL")},
      {"a text", archiveOf({"red"})},
      {"red is an integer", withRed(1)},
      {"red is a text", withRed("1")},
      {"red is an object", withRed(reference(1))},
      {"red is too large for single precision", withRed(1e300)}};
  for (const auto& [what, data] : corrupt) {
    expectError(what, data, ArchiveError::unarchivingFailed, CoderError::readCorrupt);
  }
  const std::pair<const char*, Data> colorless[] = {
      {"a number, which is allowed", archiveOf({5})},
      {"no components", archiveOfObject({{"A", 1.0F}}, qualified)},
      {"only hue and saturation", archiveOfObject({{"H", 1.0F}, {"S", 1.0F}}, qualified)},
      {"only hue and lightness", archiveOfObject({{"H", 1.0F}, {"L", 1.0F}}, qualified)},
      {"only saturation and lightness", archiveOfObject({{"S", 1.0F}, {"L", 1.0F}}, qualified)}};
  for (const auto& [what, data] : colorless) {
    expectError(what, data, ArchiveError::colorIsNil, std::nullopt);
  }
}

TEST(ColorCodingTest, WithoutSecureCodingNothingIsArchived) {
  const std::optional<Data> data = KvColor::blackColor().archivedData();
  KvColor::setSupportsSecureCoding(false);
  Error writing;
  EXPECT_FALSE(KvColor::blackColor().archivedData(&writing));
  EXPECT_THAT(writing, IsError(ArchiveError::archivingFailed));
  ASSERT_TRUE(writing.underlyingError());
  EXPECT_TRUE(writing.underlyingError()->is(CoderError::invalidValue));
  Error reading;
  EXPECT_FALSE(KvColor::unarchivedData(data, &reading));
  EXPECT_THAT(reading, IsError(ArchiveError::unarchivingFailed));
  EXPECT_TRUE(NSKeyedArchiver::archivedDataWithRootObject(boxed(KvColor::blackColor()),
                                                          SecureCoding::notRequired));
  KvColor::setSupportsSecureCoding(true);
  EXPECT_EQ(KvColor::unarchivedData(data), KvColor::blackColor());
}

std::optional<Value> archived(const Value& value) {
  return *NSKeyedArchiver::archivedDataWithRootObject(value, SecureCoding::required);
}

TEST(ColorTransformerTest, TheStoreFindsItByName) {
  KvColorTransformer::registerTransformer();
  const auto transformer = NSValueTransformer::valueTransformerForName("KvColorTransformer");
  ASSERT_TRUE(transformer);
  EXPECT_TRUE(transformer->allowsReverseTransformation());
  EXPECT_THAT(KvColorTransformer().allowedTopLevelClasses(),
              ElementsAre("NSArray", "NSNumber", "FrameworkUtility.KvColor"));

  for (const std::vector<KvColor>& colors :
       {std::vector{KvColor(1, 0.5, 0.25, 0.75), KvColor::blackColor()}, std::vector<KvColor>{}}) {
    const std::optional<Value> data = transformer->reverseTransformedValue(boxedColors(colors));
    ASSERT_TRUE(data && data->as<Data>());
    EXPECT_EQ(unboxedColors(transformer->transformedValue(data)), colors);
  }
}

TEST(ColorTransformerTest, AnythingElseGivesNothing) {
  const KvColorTransformer transformer;
  const Value color = boxed(KvColor::blackColor());
  for (const std::optional<Value>& value :
       {std::optional<Value>(), std::optional<Value>(Value()), std::optional<Value>(5),
        std::optional<Value>("text"), std::optional<Value>(Data()), archived(color),
        archived(Value(Array{color, 5})), archived(Value(Array{"text"})),
        archived(Value(Array{Value(Array{color})})), archived(Dictionary{{"color", color}})}) {
    SCOPED_TRACE(value ? value->description() : "absent");
    EXPECT_FALSE(transformer.transformedValue(value));
    EXPECT_FALSE(transformer.reverseTransformedValue(value));
  }
  for (const Value& list : {Value(Array{color, 5}), Value(Array{"text"}), color}) {
    EXPECT_FALSE(transformer.reverseTransformedValue(list)) << list;
  }
}

}  // namespace
}  // namespace FrameworkUtility
