#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <tests/platform/foundation/archives/sketch_classes.h>
#include <tests/platform/foundation/property_lists/binary_list.h>
#include <tests/support/archives.h>
#include <tests/support/is_error.h>

#include <gtest/gtest.h>

#include <cmath>

namespace FrameworkUtility {
namespace {

using namespace testing;

TEST(ArchiveRefusalTest, WhatCannotBeArchivedIsRefused) {
  class Stranger final : public NSObject {
   public:
    std::string_view className() const override { return "Sketch.Stranger"; }
  };
  class Unregistered final : public Node {
   public:
    std::string_view className() const override { return "Sketch.Unregistered"; }
  };
  const Value values[] = {Value(std::make_shared<Stranger>()),
                          Value(std::make_shared<Unregistered>()),
                          Error("Domain", 1),
                          Date::max(),
                          "\xFF",
                          Dictionary{{"\xFF", 1}}};
  for (const Value& value : values) {
    Error error;
    EXPECT_FALSE(archived(list({1, value}), &error)) << value;
    EXPECT_THAT(error, IsError(CoderError::invalidValue));
  }
}

TEST(ArchiveRefusalTest, WhatIsNoArchiveIsRefused) {
  const Dictionary whole{{"$version", 100000},
                         {"$archiver", "NSKeyedArchiver"},
                         {"$top", Dictionary{{"root", reference(1)}}},
                         {"$objects", list({"$null", "root"})}};
  const auto with = [&](const char* key, const Value& value) {
    Dictionary changed = whole;
    changed.set(key, value);
    return *dataWithPropertyList(changed);
  };
  ASSERT_TRUE(unarchived(*dataWithPropertyList(whole)));
  const auto of = [](std::uint64_t classNumber, Dictionary parts) {
    parts.set("$class", reference(classNumber));
    return archiveOf({parts, classRecord("NSArray"), classRecord("NSDictionary"),
                      classRecord("NSDate"), classRecord("NSURL"), classRecord("NSUUID"), 2,
                      Dictionary(), Dictionary{{"$class", reference(99)}}, list({}),
                      classRecord("Unknown"), Dictionary{{"$classname", 5}}});
  };
  const Data archives[] = {
      Data(std::as_bytes(std::span("not an archive"))),
      *dataWithPropertyList("text"),
      with("$version", 100001),
      with("$archiver", "NSArchiver"),
      with("$top", list({})),
      with("$objects", Dictionary()),
      with("$top", Dictionary{{"root", reference(2)}}),
      with("$top", Dictionary{{"root", reference(~std::uint64_t{0})}}),
      with("$top", Dictionary{{"root", -1}}),
      with("$top", Dictionary{{"root", "root"}}),
      of(2, {{"NS.objects", references({0})}}),
      of(2, {{"NS.objects", references({8})}}),
      of(2, {{"NS.objects", references({9})}}),
      of(2, {{"NS.objects", references({10})}}),
      of(2, {{"NS.objects", list({1})}}),
      of(2, {{"NS.objects", reference(2)}}),
      of(2, {{"NS.objects", references({1})}}),  // reaches itself
      of(7, {{"NS.objects", references({})}}),
      of(11, {{"NS.objects", references({})}}),
      of(12, {{"NS.objects", references({})}}),
      archiveOf({Dictionary{{"$class", 2}}, classRecord("NSArray")}),
      of(3, {{"NS.keys", references({7})}, {"NS.objects", references({})}}),
      of(3, {{"NS.keys", references({})}, {"NS.objects", references({7})}}),
      of(3, {{"NS.keys", references({7, 7})}, {"NS.objects", references({7, 7})}}),
      of(3, {{"NS.keys", references({1})}, {"NS.objects", references({7})}}),
      of(4, {{"NS.time", std::nan("")}}),
      of(4, {{"NS.time", 1e300}}),
      of(4, {{"NS.time", 1}}),
      of(5, {{"NS.relative", reference(7)}}),
      of(5, {{"NS.base", reference(7)}, {"NS.relative", reference(7)}}),
      of(5, {{"NS.base", reference(1)}, {"NS.relative", reference(7)}}),
      of(6, {{"NS.uuidbytes", Data()}}),
      of(6, {}),
  };
  for (std::size_t i = 0; i < std::size(archives); ++i) {
    Error error;
    EXPECT_FALSE(unarchived(archives[i], &error)) << i;
    EXPECT_THAT(error, IsError(CoderError::readCorrupt)) << i;
  }

  Error error;
  EXPECT_FALSE(unarchived(Data(), &error));
  EXPECT_EQ(reasonOf(error),
            "data is empty; did you forget to send -finishEncoding to the NSKeyedArchiver?");
  for (const Dictionary& top : {Dictionary{{"root", reference(0)}}, Dictionary()}) {
    EXPECT_FALSE(unarchived(archiveOf({}, top), &error));
    EXPECT_THAT(error, IsError(CoderError::valueNotFound));
  }
  EXPECT_EQ(reasonOf(error), "requested key: 'root'");
}

/// Levels of lists, each with two references to the next.
Data doubling(std::uint64_t levels) {
  Array objects;
  for (std::uint64_t level = 1; level <= levels; ++level) {
    objects.push_back(Dictionary{{"NS.objects", references({level + 1, level + 1})},
                                 {"$class", reference(levels + 2)}});
  }
  objects.push_back(1);
  objects.push_back(classRecord("NSArray"));
  return archiveOf(std::move(objects));
}

TEST(ArchiveRefusalTest, WhatIsReferredToManyTimesIsReadOnceOrRefused) {
  EXPECT_TRUE(unarchived(doubling(8)));
  Error error;
  EXPECT_FALSE(unarchived(doubling(24), &error));
  EXPECT_EQ(reasonOf(error), "the archive expands too much");

  std::shared_ptr<Node> node = std::make_shared<Node>();
  for (int level = 0; level < 24; ++level) {
    auto above = std::make_shared<Node>();
    above->next = {node, node};
    node = std::move(above);
  }
  Node::made = 0;
  EXPECT_TRUE(unarchived({"Sketch.Node"}, *archived(Value(node))));
  EXPECT_EQ(Node::made, 25);
}

Value nested(std::size_t levels) {
  Value value = 1;
  for (std::size_t level = 1; level < levels; ++level) value = list({std::move(value)});
  return value;
}

/// What writing and reading `value` within `limits` says; "" when both succeed.
std::string refusal(const Value& value, const ArchiveLimits& limits) {
  NSKeyedArchiver archiver(SecureCoding::required, limits);
  archiver.encodeObject(value, NSKeyedArchiveRootObjectKey);
  Error error;
  const bool isWritten = archiver.encodedData(&error).has_value();

  NSKeyedArchiver unlimited(SecureCoding::required, {.depth = 1'000});
  unlimited.encodeObject(value, NSKeyedArchiveRootObjectKey);
  const std::optional<Data> data = unlimited.encodedData();
  if (!data) return "not written";
  NSKeyedUnarchiver coder({"NSArray"}, *data, limits);
  const bool isRead = coder.decodeObjectForKey(NSKeyedArchiveRootObjectKey).has_value();
  EXPECT_EQ(isWritten, isRead) << reasonOf(error);
  return isRead ? "" : reasonOf(*coder.error());
}

TEST(ArchiveRefusalTest, LimitsBindBothWays) {
  EXPECT_EQ(refusal(nested(65), {}), "");
  EXPECT_EQ(refusal(nested(66), {}), "the graph of objects is too deep");
  EXPECT_EQ(refusal(nested(66), {.depth = 65}), "");
  EXPECT_EQ(refusal(nested(513), {.depth = 10'000}), "");
  EXPECT_EQ(refusal(nested(514), {.depth = 10'000}), "not written");

  const Value many = list(Array(97, Value(1)));  // with nil, the list and its class, 100
  EXPECT_EQ(refusal(many, {.objects = 100}), "");
  EXPECT_EQ(refusal(many, {.objects = 99}), "incomprehensible archive");

  const std::size_t size = archived(many)->size();
  EXPECT_EQ(refusal(many, {.bytes = size}), "");
  EXPECT_EQ(refusal(many, {.bytes = size - 1}), "the archive is too large");

  NSKeyedUnarchiver coder(doubling(14), {.expansion = 1000});
  EXPECT_TRUE(coder.decodeObjectForKey("root"));
  NSKeyedUnarchiver tight(doubling(14), {.expansion = 1});
  EXPECT_FALSE(tight.decodeObjectForKey("root"));
}

/// An archive whose table refers to one object again and again.
std::string withObjects(const std::string& object, std::uint64_t count) {
  const auto text = [](const std::string& characters) {
    return "\x5F\x10" + std::string(1, static_cast<char>(characters.size())) + characters;
  };
  std::string table = "\xAF\x12" + bigEndian(count, 4);
  for (std::uint64_t i = 0; i < count; ++i) table += '\x0B';
  return BinaryList{{std::string("\xD4\1\3\5\6\2\4\7\x0A", 9), text("$version"),
                     "\x12" + bigEndian(100'000, 4), text("$archiver"), text("NSKeyedArchiver"),
                     text("$top"), text("$objects"), std::string("\xD1\x08\x09", 3), text("root"),
                     "\x80\1", table, object}}
      .bytes();
}

TEST(ArchiveRefusalTest, HostileTablesAreRefusedSoon) {
  const auto reasonFor = [](const std::string& bytes) {
    Error error;
    return unarchived(Data(std::as_bytes(std::span(bytes))), &error) ? "" : reasonOf(error);
  };
  EXPECT_EQ(reasonFor(withObjects("\x51x", 100'000)), "");
  EXPECT_EQ(reasonFor(withObjects("\x51x", 100'001)), "incomprehensible archive");
  EXPECT_EQ(reasonFor(withObjects("\x5F\x13" + bigEndian(~std::uint64_t{0}, 8), 2)),
            "incomprehensible archive");

  NSKeyedUnarchiver coder(doubling(20'000), {.depth = 1'000'000});
  EXPECT_FALSE(coder.decodeObjectForKey("root"));
  EXPECT_EQ(reasonOf(*coder.error()), "the graph of objects is too deep");
}

}  // namespace
}  // namespace FrameworkUtility
