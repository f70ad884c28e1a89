#include <framework_utility/platform/foundation/archives/keyed_archiver.h>
#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>
#include <framework_utility/platform/foundation/archives/set.h>
#include <framework_utility/platform/foundation/archives/uuid.h>
#include <framework_utility/platform/foundation/archives/value_transformer.h>
#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <tests/platform/foundation/archives/sketch_classes.h>
#include <tests/support/archives.h>
#include <tests/support/is_error.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace FrameworkUtility {
namespace {

using namespace std::chrono_literals;
using namespace testing;

/// A list's values with its references as texts, "#2", so that lists can be compared.
Value withReferences(const Value& value) {
  if (const auto number = PropertyListUID::numberIn(value)) {
    return Value("#" + std::to_string(*number));
  }
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

TEST(KeyedArchiveTest, HasThePlatformsLayout) {
  const NSUUID::Bytes bytes{std::byte{1}, std::byte{2}};
  const auto data = archived(
      list({boxed(Stroke{0.5, -3}), "text", boxed(Stroke{2, 7}), Value(),
            Date(std::chrono::sys_days{2001y / 1 / 1} + 1500ms), URL::fileURLWithPath("/a b"),
            Dictionary{{"key", true}, {17, Data()}}, Value(std::make_shared<NSUUID>(bytes)),
            Value(std::make_shared<NSSet>(Array{-1}))}));
  ASSERT_TRUE(data);
  const Value read = withReferences(propertyListWithData(*data).value());
  const Dictionary expected{
      {"$version", 100000},
      {"$archiver", "NSKeyedArchiver"},
      {"$top", Dictionary{{"root", "#1"}}},
      {"$objects", list({
                       "$null",
                       Dictionary{{"NS.objects", list({"#2", "#4", "#5", "#6", "#8", "#10", "#13",
                                                       "#19", "#21"})},
                                  {"$class", "#24"}},
                       Dictionary{{"width", 0.5F}, {"$$count", -3}, {"$class", "#3"}},
                       classRecord("Sketch.Stroke"),
                       "text",
                       Dictionary{{"width", 2.0F}, {"$$count", 7}, {"$class", "#3"}},
                       Dictionary{{"$class", "#7"}},
                       classRecord("NSNull"),
                       Dictionary{{"NS.time", 1.5}, {"$class", "#9"}},
                       classRecord("NSDate"),
                       Dictionary{{"NS.base", "#0"}, {"NS.relative", "#11"}, {"$class", "#12"}},
                       "file:///a%20b",
                       classRecord("NSURL"),
                       Dictionary{{"NS.keys", list({"#14", "#15"})},
                                  {"NS.objects", list({"#16", "#17"})},
                                  {"$class", "#18"}},
                       "key",
                       17,
                       true,
                       Data(),
                       classRecord("NSDictionary"),
                       Dictionary{{"NS.uuidbytes", Data(bytes)}, {"$class", "#20"}},
                       classRecord("NSUUID"),
                       Dictionary{{"NS.objects", list({"#22"})}, {"$class", "#23"}},
                       -1,
                       classRecord("NSSet"),
                       classRecord("NSArray"),
                   })}};
  EXPECT_EQ(read, Value(expected)) << read;

  Error error;
  const auto root = unarchived({"NSArray", "NSNull", "NSDate", "NSURL", "NSDictionary", "NSData",
                                "NSUUID", "NSSet", "Sketch.Stroke"},
                               *data, &error);
  ASSERT_TRUE(root) << error << reasonOf(error);
  EXPECT_EQ(archived(*root), data);
  EXPECT_FALSE(unboxed<Stroke>(root->as<Array>()->at(1)));
}

TEST(KeyedArchiveTest, AnObjectThatIsMetAgainIsWrittenOnce) {
  const auto top = std::make_shared<Node>();
  const auto shared = std::make_shared<Leaf>();
  top->next = {shared, shared, std::make_shared<Leaf>()};
  const auto again = nodeIn(unarchived({"Sketch.Node"}, archived(Value(top)).value()));
  ASSERT_TRUE(again);
  ASSERT_EQ(again->next.size(), 3U);
  EXPECT_EQ(again->next[0], again->next[1]);
  EXPECT_NE(again->next[0], again->next[2]);
  EXPECT_EQ(again->next[2]->className(), "Sketch.Leaf");

  shared->next = {top};
  Error error;
  EXPECT_FALSE(archived(Value(top), &error));
  EXPECT_EQ(reasonOf(error),
            "Caught exception during archival: the graph of objects reaches itself");
  shared->next.clear();
}

TEST(KeyedArchiveTest, ReadsWhatOtherWritersWrite) {
  /// The root, whose class comes next.
  const auto root = [](Dictionary parts) {
    parts.set("$class", reference(2));
    return Value(std::move(parts));
  };
  const Data x(std::as_bytes(std::span("x", 1)));
  const struct {
    const char* what;
    Array objects;
    Value expected;
  } cases[] = {
      {"a mutable list",
       {root({{"NS.objects", references({3})}}), classRecord("NSMutableArray", {"NSArray"}), 1.5},
       list({1.5})},
      {"a mutable dictionary",
       {root({{"NS.keys", references({3, 4})}, {"NS.objects", references({4, 3})}}),
        classRecord("NSMutableDictionary", {"NSDictionary"}), "a", 17},
       Dictionary{{"a", 17}, {17, "a"}}},
      {"a mutable text, inline",
       {root({{"NS.string", "inline"}}), classRecord("NSMutableString", {"NSString"})},
       "inline"},
      {"a mutable text, referred to",
       {root({{"NS.string", reference(3)}}), classRecord("NSMutableString", {"NSString"}), "there"},
       "there"},
      {"mutable data", {root({{"NS.data", x}}), classRecord("NSMutableData", {"NSData"})}, x},
      {"a plain date", {Date()}, Date()},
      {"a URL that is relative to another",
       {root({{"NS.base", reference(3)}, {"NS.relative", reference(4)}}), classRecord("NSURL"),
        root({{"NS.base", reference(0)}, {"NS.relative", reference(5)}}), "../c?q",
        "https://host/a/b/d"},
       *URL::withString("https://host/a/c?q")},
      {"a class of which only a hint is known",
       {root({{"NS.objects", references({})}}),
        Dictionary{{"$classname", "Unknown"},
                   {"$classhints", list({"NSArray"})},
                   {"$classes", list({"Unknown", "NSDictionary"})}}},
       list({})},
      {"a class of which only a superclass is known",
       {root({{"NS.objects", references({})}}),
        classRecord("Unknown", {"AlsoUnknown", "NSMutableArray", "NSArray"})},
       list({})},
      {"a list that stands in two places",
       {root({{"NS.objects", references({3, 3})}}), classRecord("NSArray"),
        root({{"NS.objects", references({4})}}), true},
       list({list({true}), list({true})})}};
  for (const auto& c : cases) {
    Error error;
    EXPECT_EQ(unarchived(archiveOf(c.objects), &error), c.expected) << c.what << reasonOf(error);
  }

  for (const char* name : {"Sketch.Stroke", "_TtC6Sketch6Stroke", "Stroke"}) {
    const Data data = archiveOfObject({{"width", 2.0F}, {"$$count", 7}}, name);
    for (const char* allowed : {"Sketch.Stroke", "_TtC6Sketch6Stroke", "Stroke", "NSObject"}) {
      const auto value = unarchived({allowed}, data);
      const Stroke* stroke = value ? unboxed<Stroke>(*value) : nullptr;
      ASSERT_TRUE(stroke) << name << ' ' << allowed;
      EXPECT_EQ(stroke->count, 7);
    }
  }
  for (const char* name : {"Other.Stroke", "_TtC5Other6Stroke", "_TtC6Sketch7Stroke", "_TtC6Sketch",
                           "_TtC9999999999999999999999Sketch", "Sketch."}) {
    EXPECT_FALSE(unarchived(archiveOfObject({{"width", 2.0F}}, name))) << name;
  }
}

TEST(KeyedArchiveTest, NumbersAreReadAsWhatTheyAre) {
  constexpr double none = -77;  // a failure
  constexpr std::uint64_t large = std::numeric_limits<std::uint64_t>::max();
  const struct {
    Value stored;
    double asBool, asInt32, asInt64, asFloat, asDouble;
  } cases[] = {
      {true, 1, 1, 1, none, none},
      {0, 0, 0, 0, none, none},
      {-3, 1, -3, -3, none, none},
      {std::int64_t{1} << 31, 1, none, 0x1p31, none, none},
      {std::int64_t{-1} << 31, 1, -0x1p31, -0x1p31, none, none},
      {large, 1, none, none, none, none},
      {0.1F, none, none, none, 0.1F, 0.1F},
      {0.1, none, none, none, 0.1F, 0.1},
      {1e300, none, none, none, none, 1e300},
      {std::numeric_limits<double>::infinity(), none, none, none,
       std::numeric_limits<double>::infinity(), std::numeric_limits<double>::infinity()},
      {"1", none, none, none, none, none},
      {reference(1), none, none, none, none, none},
  };
  for (const auto& c : cases) {
    const Data data = archiveOf({1}, {{"key", c.stored}});
    const auto read = [&](auto call) {
      NSKeyedUnarchiver coder(data);
      EXPECT_TRUE(coder.containsValueForKey("key"));
      const auto value = static_cast<double>((coder.*call)("key"));
      if (!coder.error()) return value;
      EXPECT_THAT(*coder.error(), IsError(CoderError::readCorrupt));
      EXPECT_EQ(value, 0);
      EXPECT_FALSE(coder.containsValueForKey("key"));  // nor anything else from then on
      return none;
    };
    EXPECT_EQ(read(&NSKeyedUnarchiver::decodeBoolForKey), c.asBool) << c.stored;
    EXPECT_EQ(read(&NSKeyedUnarchiver::decodeInt32ForKey), c.asInt32) << c.stored;
    EXPECT_EQ(read(&NSKeyedUnarchiver::decodeInt64ForKey), c.asInt64) << c.stored;
    EXPECT_EQ(read(&NSKeyedUnarchiver::decodeFloatForKey), c.asFloat) << c.stored;
    EXPECT_EQ(read(&NSKeyedUnarchiver::decodeDoubleForKey), c.asDouble) << c.stored;
  }

  NSKeyedUnarchiver coder(archiveOf({1}, {{"nil", reference(0)}}));
  EXPECT_TRUE(coder.containsValueForKey("nil"));
  EXPECT_FALSE(coder.decodeObjectForKey("nil"));
  EXPECT_FALSE(coder.decodeObjectForKey("missing"));
  EXPECT_FALSE(coder.decodeBytesForKey("missing") || coder.decodeObjectsForKey("missing"));
  EXPECT_EQ(coder.decodeDoubleForKey("missing"), 0);
  EXPECT_FALSE(coder.error());
}

TEST(KeyedArchiveTest, KeysOfTheTopAreTheAppsOwnAndTheEndTakesNoMore) {
  NSKeyedArchiver archiver(SecureCoding::notRequired);
  archiver.encodeBool(true, "yes");
  archiver.encodeInt32(-5, "yes");  // replaces
  archiver.encodeBytes(std::as_bytes(std::span("ab", 2)), "$class");
  archiver.encodeObject(std::nullopt, "nil");
  const Data data = archiver.encodedData().value();
  archiver.encodeBool(true, "late");
  archiver.encodeBytes({}, "late");
  archiver.encodeObject(Value(Error("no", 1)), "late");  // which would be an error
  Error error;
  EXPECT_EQ(archiver.encodedData(&error), data);
  EXPECT_EQ(error, Error());

  NSKeyedUnarchiver coder(data);
  EXPECT_EQ(coder.decodeInt32ForKey("yes"), -5);
  EXPECT_EQ(coder.decodeBytesForKey("$class"), Data(std::as_bytes(std::span("ab", 2))));
  EXPECT_TRUE(coder.containsValueForKey("nil"));
  EXPECT_FALSE(coder.containsValueForKey("late"));
}

TEST(KeyedArchiveTest, SecureDecodingMakesAllowedClassesOnly) {
  const Data strokes = *archived(list({boxed(Stroke{}), "text", 5}));
  const Data leaf = *archived(Value(std::make_shared<Leaf>()));
  const Data bytes = *archived(list({Data()}));
  const Data text = *archived("text");
  const struct {
    const Data* data;
    ClassNames allowed;
    const char *key, *refused, *list;  // null where it succeeds
  } cases[] = {
      {&strokes, {"NSArray", "Sketch.Stroke"}, {}, {}, {}},  // texts and numbers need no mention
      {&strokes, {"Sketch.Stroke"}, "root", "NSArray", "Sketch.Stroke"},
      {&strokes, {"NSArray", "NSString"}, "NS.objects", "Sketch.Stroke", "NSArray, NSString"},
      {&leaf, {"Sketch.Node"}, {}, {}, {}},
      {&leaf, {"Sketch.Leaf"}, {}, {}, {}},
      {&bytes, {"NSArray"}, "NS.objects", "NSData", "NSArray"},
      {&text, {"NSString"}, {}, {}, {}},
      {&text, {}, "root", "NSString", ""},
  };
  for (const auto& c : cases) {
    Error error;
    EXPECT_EQ(unarchived(c.allowed, *c.data, &error).has_value(), !c.key) << reasonOf(error);
    if (!c.key) continue;
    EXPECT_THAT(error, IsError(CoderError::readCorrupt));
    EXPECT_EQ(reasonOf(error), std::string("value for key '") + c.key +
                                   "' was of unexpected class '" + c.refused +
                                   "'. Allowed classes are '{(" + c.list + ")}'.");
  }
  // Each object is judged where it is asked for, also one that was made already.
  NSKeyedUnarchiver coder({"Sketch.Node"}, leaf);
  EXPECT_TRUE(coder.decodeObjectForKey("root"));
  EXPECT_FALSE(coder.decodeObjectOfClasses({"NSArray"}, "root"));
  EXPECT_TRUE(coder.error());
}

TEST(KeyedArchiveTest, AClassThatIsNotSecureIsRefusedBothWays) {
  const Data data = *archived(boxed(Stroke{}));
  Stroke::isSecure = false;
  Error error;
  EXPECT_FALSE(archived(boxed(Stroke{}), &error));
  EXPECT_THAT(error, IsError(CoderError::invalidValue));
  EXPECT_FALSE(unarchived({"Sketch.Stroke"}, data, &error));
  EXPECT_THAT(error, IsError(CoderError::readCorrupt));
  EXPECT_TRUE(unarchived(data));
  EXPECT_TRUE(
      NSKeyedArchiver::archivedDataWithRootObject(boxed(Stroke{}), SecureCoding::notRequired));
  Stroke::isSecure = true;
  EXPECT_TRUE(unarchived({"Sketch.Stroke"}, data));
}

TEST(KeyedArchiveTest, ARootThatCannotBeMadeIsMissing) {
  const Data data = archiveOfObject({}, "Sketch.Stroke");
  NSKeyedUnarchiver coder({"Sketch.Stroke"}, data);
  EXPECT_FALSE(coder.decodeTopLevelObjectForKey("root"));
  EXPECT_FALSE(coder.error());
  Error error;
  EXPECT_FALSE(unarchived({"Sketch.Stroke"}, data, &error));
  EXPECT_THAT(error, IsError(CoderError::valueNotFound));
}

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
