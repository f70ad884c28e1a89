#include <framework_utility/platform/foundation/values/object.h>
#include <framework_utility/platform/foundation/values/value.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace FrameworkUtility {
namespace {

using namespace std::chrono_literals;

class Thing : public NSObject {
 public:
  std::string_view className() const override { return "Thing"; }
};

std::vector<std::string> keysOf(const Dictionary& dictionary) {
  std::vector<std::string> keys;
  for (const auto& [key, value] : dictionary) {
    keys.push_back(key.text() ? std::string(*key.text()) : key.number()->description());
  }
  return keys;
}

TEST(DictionaryTest, KeepsTheOrderInWhichKeysWereFirstSet) {
  Dictionary dictionary{{"b", 1}, {"a", 2}, {"b", 3}};
  dictionary.set("c", 4);
  dictionary.set("a", 5);
  EXPECT_THAT(keysOf(dictionary), ::testing::ElementsAre("b", "a", "c"));
  EXPECT_EQ(*dictionary.get<Number>("b"), Number(3));
  EXPECT_EQ(*dictionary.get<Number>("a"), Number(5));
  EXPECT_TRUE(dictionary.remove("b"));
  EXPECT_FALSE(dictionary.remove("b"));
  EXPECT_THAT(keysOf(dictionary), ::testing::ElementsAre("a", "c"));
}

TEST(DictionaryTest, TextAndNumberKeysAreDifferentAndMissingIsOfAnotherType) {
  const Dictionary dictionary{{"17", "text"}, {17, "number"}, {"Nothing", Value()}};
  EXPECT_EQ(dictionary.size(), 3u);
  EXPECT_EQ(*dictionary.get<std::string>("17"), "text");
  for (const Key& key : {Key(17), Key(17.0), Key(Number(17u))}) {
    EXPECT_EQ(*dictionary.get<std::string>(key), "number");
  }
  EXPECT_EQ(dictionary.get<Number>(17), nullptr);
  EXPECT_EQ(dictionary.get<std::string>("Missing"), nullptr);
  EXPECT_EQ(dictionary.find(0), nullptr);
  ASSERT_NE(dictionary.find("Nothing"), nullptr);
  EXPECT_TRUE(dictionary.find("Nothing")->isNull());
}

TEST(DictionaryTest, KeysOfConstantsAreOrdinaryKeys) {
  static constexpr std::string_view name = "ALongNameThatWouldNeedAnAllocation";
  Dictionary dictionary;
  dictionary.append(Key::withConstant(name), 1);
  dictionary.set(std::string(name), 2);
  const Dictionary copy = dictionary;
  EXPECT_EQ(copy, (Dictionary{{name, 2}}));
  EXPECT_EQ(copy.begin()->key.text()->data(), name.data());  // not copied
  EXPECT_EQ(Key(name), Key::withConstant(name));
}

TEST(DictionaryTest, SubdictionaryReplacesWhatIsNone) {
  Dictionary dictionary{{"{TIFF}", 1}, {"{GPS}", Dictionary{{"a", 1}}}};
  dictionary.subdictionary("{TIFF}").set("Make", "x");
  dictionary.subdictionary("{GPS}").set("b", 2);
  dictionary.subdictionary("{Exif}").set("c", 3);
  EXPECT_EQ(dictionary, (Dictionary{{"{Exif}", Dictionary{{"c", 3}}},
                                    {"{GPS}", Dictionary{{"b", 2}, {"a", 1}}},
                                    {"{TIFF}", Dictionary{{"Make", "x"}}}}));
}

TEST(DictionaryTest, EqualityIgnoresOrderButNotKeysOrValues) {
  const Dictionary dictionary{{"a", 1}, {"b", "x"}};
  EXPECT_EQ(dictionary, (Dictionary{{"b", "x"}, {"a", 1.0}}));
  for (const Dictionary& other :
       {Dictionary{{"a", 1}}, Dictionary{{"a", 1}, {"c", "x"}}, Dictionary{{"a", "x"}, {"b", 1}}}) {
    EXPECT_FALSE(dictionary == other) << Value(other);
  }
}

TEST(ValueTest, HoldsEachOfItsTypes) {
  const auto thing = std::make_shared<Thing>();
  const std::array bytes{std::byte{1}, std::byte{2}};
  const std::pair<Value, const char*> cases[] = {
      {Value(), "null"},
      {6, "6"},
      {"text", "text"},
      {Data(bytes), "<2 bytes>"},
      {Date(std::chrono::sys_days{2024y / 5 / 17} + 9h + 30min), "2024-05-17 09:30:00 +0000"},
      {Date(-1us), "1969-12-31 23:59:59 +0000"},
      {Date::max(), "9223372036854 seconds since 1970"},
      {URL::fileURLWithPath("/a b"), "file:///a%20b"},
      {Error("D", 1),
       "Error Domain=D Code=1 \"The operation couldn’t be completed. (D error 1.)\""},
      {Value(Array{1, "two", Value(Array{})}), "[1, \"two\", []]"},
      {Dictionary{{"a", 1.5}, {2, "b"}}, "{a = 1.5, 2 = \"b\"}"},
      {Value(thing), "<Thing>"},
      {Value(std::shared_ptr<NSObject>()), "null"},
  };
  for (const auto& [value, text] : cases) {
    EXPECT_EQ(value.description(), text);
    EXPECT_EQ(value, Value(value));
  }
  EXPECT_EQ(Value(thing), Value(thing));
  EXPECT_FALSE(Value(thing) == Value(std::make_shared<Thing>()));
  EXPECT_FALSE(Value(1) == Value("1"));
  EXPECT_FALSE(Value() == Value(0));
}

TEST(DataTest, ComparesBytesAndSharesThem) {
  std::vector<std::byte> bytes(1000, std::byte{7});
  const std::byte* const address = bytes.data();
  const Data copied(std::span<const std::byte>{bytes});
  const Data taken(std::move(bytes));
  EXPECT_EQ(taken.data(), address);
  EXPECT_NE(copied.data(), address);
  EXPECT_EQ(copied, taken);
  EXPECT_EQ(Data(copied).data(), copied.data());
  EXPECT_FALSE(copied == Data());

  auto owner = std::make_shared<std::array<std::byte, 3>>();
  const std::weak_ptr<void> watched = owner;
  Data borrowed = Data::withBytesNoCopy(*owner, owner);
  EXPECT_EQ(borrowed.data(), owner->data());
  owner.reset();
  EXPECT_FALSE(watched.expired());
  borrowed = Data();
  EXPECT_TRUE(watched.expired());
}

TEST(ClockTest, ScopesNest) {
  struct FixedClock : Clock {
    Date now() const override { return date; }
    Date date;
  };
  FixedClock first, second;
  first.date = Date(1s);
  second.date = Date(2s);
  const ScopedClock outer(first);
  {
    const ScopedClock inner(second);
    EXPECT_EQ(Clock::current().now(), Date(2s));
  }
  EXPECT_EQ(Clock::current().now(), Date(1s));
}

}  // namespace
}  // namespace FrameworkUtility
