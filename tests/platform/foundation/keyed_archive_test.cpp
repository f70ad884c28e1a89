#include <framework_utility/platform/foundation/keyed_archiver.h>
#include <framework_utility/platform/foundation/keyed_unarchiver.h>
#include <framework_utility/platform/foundation/property_list.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace FrameworkUtility {
namespace {

/// A value type: two numbers inline.
struct Stroke {
  float width = 1;
  std::int64_t count = 0;

  static std::string_view className() { return "Sketch.Stroke"; }
  static bool supportsSecureCoding() { return isSecure; }
  static std::optional<Stroke> withCoder(NSKeyedUnarchiver& coder) {
    if (!coder.containsValueForKey("width")) return std::nullopt;
    return Stroke{coder.decodeFloatForKey("width"), coder.decodeInt64ForKey("$count")};
  }
  void encodeWithCoder(NSKeyedArchiver& coder) const {
    coder.encodeFloat(width, "width");
    coder.encodeInt64(count, "$count");
  }

  static inline bool isSecure = true;
};

/// A list's values with its references as texts, "#2", so that lists can be compared.
Value withReferences(const Value& value) {
  if (const auto number = PropertyListUID::numberIn(value))
    return Value("#" + std::to_string(*number));
  if (const auto* array = value.as<Array>()) {
    Array all;
    for (const Value& element : *array) all.push_back(withReferences(element));
    return Value(all);
  }
  if (const auto* dictionary = value.as<Dictionary>()) {
    Dictionary all;
    for (const auto& entry : *dictionary) all.set(entry.key, withReferences(entry.value));
    return all;
  }
  return value;
}

TEST(KeyedArchiver, WritesThePlatformsLayout) {
  const auto data = NSKeyedArchiver::archivedDataWithRootObject(
      Value(Array{boxed(Stroke{0.5, -3}), "text", boxed(Stroke{2, 7})}), SecureCoding::required);
  ASSERT_TRUE(data);
  const auto list = propertyListWithData(*data);
  ASSERT_TRUE(list);
  const Dictionary expected{
      {"$version", 100000},
      {"$archiver", "NSKeyedArchiver"},
      {"$top", Dictionary{{"root", "#1"}}},
      {"$objects",
       Value(Array{
           "$null",
           Dictionary{{"NS.objects", Value(Array{"#2", "#4", "#5"})}, {"$class", "#6"}},
           Dictionary{{"width", 0.5F}, {"$$count", -3}, {"$class", "#3"}},
           Dictionary{{"$classname", "Sketch.Stroke"},
                      {"$classes", Value(Array{"Sketch.Stroke", "NSObject"})}},
           "text",
           Dictionary{{"width", 2.0F}, {"$$count", 7}, {"$class", "#3"}},
           Dictionary{{"$classname", "NSArray"}, {"$classes", Value(Array{"NSArray", "NSObject"})}},
       })}};
  EXPECT_EQ(withReferences(*list), Value(expected)) << withReferences(*list);

  Error error;
  const auto root =
      NSKeyedUnarchiver::unarchivedObjectOfClasses({"NSArray", "Sketch.Stroke"}, *data, &error);
  ASSERT_TRUE(root) << error;
  const auto* elements = root->as<Array>();
  ASSERT_TRUE(elements);
  ASSERT_EQ(elements->size(), 3U);
  const auto* last = unboxed<Stroke>(elements->back());
  ASSERT_TRUE(last);
  EXPECT_EQ(last->width, 2);
  EXPECT_EQ(last->count, 7);
}

}  // namespace
}  // namespace FrameworkUtility
