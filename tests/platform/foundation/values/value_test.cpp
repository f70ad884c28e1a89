#include <framework_utility/platform/foundation/values/error.h>
#include <framework_utility/platform/foundation/values/fail.h>
#include <framework_utility/platform/foundation/values/object.h>
#include <framework_utility/platform/foundation/values/stop.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <tests/support/is_error.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <sstream>
#include <type_traits>
#include <utility>

namespace FrameworkUtility {
namespace {

using namespace std::chrono_literals;

class Thing : public NSObject {
 public:
  std::string_view className() const override { return "Thing"; }
};

TEST(DictionaryTest, KeepsTheOrderInWhichKeysWereFirstSet) {
  Dictionary dictionary{{"b", 1}, {"a", 2}, {"b", 3}};
  dictionary.set("c", 4);
  dictionary.set("a", 5);
  EXPECT_EQ(Value(dictionary).description(), "{b = 3, a = 5, c = 4}");
  EXPECT_TRUE(dictionary.remove("b"));
  EXPECT_FALSE(dictionary.remove("b"));
  EXPECT_EQ(Value(dictionary).description(), "{a = 5, c = 4}");
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
    explicit FixedClock(Date date) : date_(date) {}
    Date now() const override { return date_; }
    Date date_;
  };
  const FixedClock first(Date(1s)), second(Date(2s));
  const ScopedClock outer(first);
  {
    const ScopedClock inner(second);
    EXPECT_EQ(Clock::current().now(), Date(2s));
  }
  EXPECT_EQ(Clock::current().now(), Date(1s));
}

// Of a temporary, nothing refers to it.
static_assert(!std::is_reference_v<decltype(std::declval<Error>().domain())>);
static_assert(!std::is_reference_v<decltype(std::declval<Error>().userInfo())>);

constexpr ErrorCode noFile{"DiskDomain", 5, "No file."};

TEST(ErrorTest, DomainAndCodeDecideWhatItIs) {
  const Error error("DiskDomain", 5, {{NSLocalizedDescriptionKey, "No file."}});
  EXPECT_THAT(error, testing::IsError(noFile));
  EXPECT_TRUE(error.is(noFile));
  EXPECT_FALSE(Error("DiskDomain", 6).is(noFile) || Error("diskDomain", 5).is(noFile));
  std::ostringstream out;
  out << error << Error("D", -7).localizedDescription();
  EXPECT_EQ(out.str(),
            "Error Domain=DiskDomain Code=5 \"No file.\""
            "The operation couldn’t be completed. (D error -7.)");
}

TEST(ErrorTest, EqualityLooksAtAllUserInformation) {
  const Error cause("E", 1);
  const Error error("D", 1, {{"Path", "/a"}, {NSUnderlyingErrorKey, cause}});
  EXPECT_EQ(error, Error("D", 1, {{NSUnderlyingErrorKey, cause}, {"Path", "/a"}}));
  for (const Error& other :
       {Error("D", 1, {{NSUnderlyingErrorKey, Error("E", 2)}, {"Path", "/a"}}),
        Error("D", 1, {{NSUnderlyingErrorKey, cause}, {"Path", "/b"}}),
        Error("D", 1, {{NSUnderlyingErrorKey, "text"}, {"Path", "/a"}}),
        Error("D", 2, {{NSUnderlyingErrorKey, cause}, {"Path", "/a"}}),
        Error("E", 1, {{NSUnderlyingErrorKey, cause}, {"Path", "/a"}}), Error("D", 1)}) {
    EXPECT_FALSE(error == other) << other;
  }
  EXPECT_EQ(Error(), Error("", 0));
}

TEST(ErrorTest, AMillionCausesAreComparedAndFreedWithoutRecursion) {
  constexpr int length = 1'000'000;
  const auto chainOfCauses = [](std::int64_t lastCode) {
    Error error("Last", lastCode);
    for (int i = 0; i < length; ++i) error = Error("Chain", i, {{NSUnderlyingErrorKey, error}});
    return error;
  };
  Error error = chainOfCauses(1);
  EXPECT_EQ(error, chainOfCauses(1));
  EXPECT_FALSE(error == chainOfCauses(2));
  Error cause = *error.underlyingError();
  error = Error();
  EXPECT_EQ(cause.code(), length - 2);  // what others hold lives on
  int depth = 0;
  for (std::optional<Error> next = cause; next; next = next->underlyingError()) ++depth;
  EXPECT_EQ(depth, length);
}

TEST(ErrorTest, AFailureIsTheEmptyResultOfWhateverFailed) {
  Error error;
  EXPECT_FALSE(detail::fail(&error, noFile, "", {{"Path", "/a"}}));
  EXPECT_EQ(error,
            Error("DiskDomain", 5, {{NSLocalizedDescriptionKey, "No file."}, {"Path", "/a"}}));
  // None of what can be made of a flag, a number or null.
  EXPECT_FALSE(std::optional<int>(detail::fail(nullptr, noFile)));
  EXPECT_FALSE(std::optional<std::string>(detail::fail(nullptr, noFile)));
  EXPECT_FALSE(std::optional<std::vector<std::byte>>(detail::fail(nullptr, noFile)));
  EXPECT_FALSE(std::optional<Value>(detail::fail(nullptr, noFile)));
  EXPECT_FALSE(std::unique_ptr<Value>(detail::fail(nullptr, noFile)));
  EXPECT_TRUE(detail::platformError({"Domain", 7, ""}).userInfo().empty());
}

TEST(StopTest, PrintsOneLineAndAborts) {
  EXPECT_EXIT(stop("Nothing can be\nmeant by this."), ::testing::KilledBySignal(SIGABRT),
              "^Nothing can be\nmeant by this.\n$");
}

}  // namespace
}  // namespace FrameworkUtility
