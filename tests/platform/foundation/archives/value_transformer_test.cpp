#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/value_transformer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

namespace FrameworkUtility {
namespace {

class Negation final : public NSValueTransformer {
 public:
  std::optional<Value> transformedValue(const std::optional<Value>& value) const override {
    const auto* number = value ? value->as<Number>() : nullptr;
    return number ? std::optional<Value>(!number->boolValue()) : std::nullopt;
  }
  bool allowsReverseTransformation() const override { return false; }
};

TEST(ValueTransformerTest, TransformersAreFoundByTheirNames) {
  EXPECT_FALSE(NSValueTransformer::valueTransformerForName("Negation"));
  NSValueTransformer::registerClass("Negation", [] { return std::make_shared<Negation>(); });
  EXPECT_THAT(NSValueTransformer::valueTransformerNames(),
              ::testing::Not(::testing::Contains("Negation")));
  const auto made = NSValueTransformer::valueTransformerForName("Negation");
  ASSERT_TRUE(made);
  EXPECT_EQ(NSValueTransformer::valueTransformerForName("Negation"), made);
  EXPECT_THAT(NSValueTransformer::valueTransformerNames(), ::testing::Contains("Negation"));
  EXPECT_EQ(made->transformedValue(Value(true)), Value(false));
  EXPECT_FALSE(made->reverseTransformedValue(Value(true)));

  const auto other = std::make_shared<Negation>();
  NSValueTransformer::setValueTransformer(other, "Negation");
  EXPECT_EQ(NSValueTransformer::valueTransformerForName("Negation"), other);
  NSValueTransformer::setValueTransformer(nullptr, "Negation");
  EXPECT_NE(NSValueTransformer::valueTransformerForName("Negation"), other);
  NSValueTransformer::setValueTransformer(nullptr, "Negation");
}

TEST(ValueTransformerTest, ArchivesAreTransformedSecurely) {
  const auto transformer =
      NSValueTransformer::valueTransformerForName(NSSecureUnarchiveFromDataTransformerName);
  ASSERT_TRUE(transformer);
  const Value value = Dictionary{{"list", Value(Array{1, "text", Value()})}, {"data", Data()}};
  const std::optional<Value> data = transformer->reverseTransformedValue(value);
  ASSERT_TRUE(data);
  EXPECT_EQ(transformer->transformedValue(data), value);

  EXPECT_FALSE(transformer->transformedValue(std::nullopt));
  EXPECT_FALSE(transformer->reverseTransformedValue(std::nullopt));
  for (const Value& other : {Value(), Value("text"), Value(Data())}) {
    EXPECT_FALSE(transformer->transformedValue(other)) << other;
  }
  EXPECT_FALSE(transformer->reverseTransformedValue(Value(Error("Domain", 1))));
}

}  // namespace
}  // namespace FrameworkUtility
