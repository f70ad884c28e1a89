#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/value_transformer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace FrameworkUtility {
namespace {

class Identity final : public NSValueTransformer {
 public:
  std::optional<Value> transformedValue(const std::optional<Value>& value) const override {
    return value;
  }
  bool allowsReverseTransformation() const override { return false; }
};

TEST(ValueTransformerTest, TransformersAreFoundByTheirNames) {
  EXPECT_FALSE(NSValueTransformer::valueTransformerForName("Identity"));
  NSValueTransformer::registerClass("Identity", [] { return std::make_shared<Identity>(); });
  const auto made = NSValueTransformer::valueTransformerForName("Identity");
  ASSERT_TRUE(made);
  EXPECT_EQ(NSValueTransformer::valueTransformerForName("Identity"), made);
  EXPECT_THAT(NSValueTransformer::valueTransformerNames(), ::testing::Contains("Identity"));
  EXPECT_EQ(made->transformedValue(Value(true)), Value(true));
  EXPECT_FALSE(made->reverseTransformedValue(Value(true)));

  const auto other = std::make_shared<Identity>();
  NSValueTransformer::setValueTransformer(other, "Identity");
  EXPECT_EQ(NSValueTransformer::valueTransformerForName("Identity"), other);
  NSValueTransformer::setValueTransformer(nullptr, "Identity");
  EXPECT_NE(NSValueTransformer::valueTransformerForName("Identity"), other);
  NSValueTransformer::setValueTransformer(nullptr, "Identity");
}

TEST(ValueTransformerTest, ArchivesAreTransformedSecurely) {
  const auto transformer =
      NSValueTransformer::valueTransformerForName(NSSecureUnarchiveFromDataTransformerName);
  ASSERT_TRUE(transformer);
  const Value value = Dictionary{{"list", Value(Array{1, "text", Value()})}, {"data", Data()}};
  const std::optional<Value> data = transformer->reverseTransformedValue(value);
  ASSERT_TRUE(data);
  EXPECT_EQ(transformer->transformedValue(data), value);

  EXPECT_FALSE(transformer->reverseTransformedValue(std::nullopt));
  for (const auto& other : {std::optional<Value>(), {Value()}, {"text"}, {Data()}}) {
    EXPECT_FALSE(transformer->transformedValue(other));
  }
  EXPECT_FALSE(transformer->reverseTransformedValue(Value(Error("Domain", 1))));
}

}  // namespace
}  // namespace FrameworkUtility
