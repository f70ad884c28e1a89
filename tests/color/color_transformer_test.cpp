#include <framework_utility/color/color_transformer.h>
#include <framework_utility/platform/foundation/archives/keyed_archiver.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace FrameworkUtility {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

std::optional<Value> archived(const Value& value) {
  return *NSKeyedArchiver::archivedDataWithRootObject(value, SecureCoding::required);
}

TEST(ColorTransformerTest, TheStoreFindsItByName) {
  KvColorTransformer::registerTransformer();
  const auto transformer = NSValueTransformer::valueTransformerForName("KvColorTransformer");
  ASSERT_TRUE(transformer);
  EXPECT_THAT(NSValueTransformer::valueTransformerNames(), Contains("KvColorTransformer"));
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
  KvColor::setSupportsSecureCoding(false);
  EXPECT_FALSE(transformer.reverseTransformedValue(Value(Array{color})));
  KvColor::setSupportsSecureCoding(true);
}

}  // namespace
}  // namespace FrameworkUtility
