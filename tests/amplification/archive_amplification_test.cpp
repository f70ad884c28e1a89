// Property lists and archives whose parts refer to each other.

#include <framework_utility/platform/foundation/archives/keyed_unarchiver.h>
#include <framework_utility/platform/foundation/property_lists/property_list.h>
#include <tests/platform/foundation/property_lists/binary_list.h>
#include <tests/support/archives.h>
#include <tests/support/expense.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace FrameworkUtility {
namespace {

using namespace testing;

constexpr std::size_t mebibyte = std::size_t{1} << 20;

std::string repeated(std::size_t times, std::string_view text) {
  std::string all;
  while (times-- > 0) all += text;
  return all;
}

// A value counts 8 of 16 times the size and takes a hundred bytes with what allocators add.
TEST(ArchiveAmplificationTest, ListsTakeMemoryInProportionToTheirSize) {
  const std::string padding = "\x4F\x12" + bigEndian(mebibyte, 4) + std::string(mebibyte, 'x');
  const auto array = [](std::size_t count, std::uint64_t element) {
    return "\xAF\x12" + bigEndian(count, 4) + repeated(count, bigEndian(element, 2));
  };
  const std::string text = "\x5F\x11" + bigEndian(5'000, 2) + std::string(5'000, 'x');
  const std::pair<const char*, std::string> lists[] = {
      {"arrays of arrays",
       BinaryList{{array(1'000, 1), array(2'100, 2), "\x10\1", padding}, 2}.bytes()},
      {"one array too many",
       BinaryList{{array(9'000, 1), array(9'000, 2), "\x10\1", padding}, 2}.bytes()},
      {"one text again and again", BinaryList{{array(3'500, 1), text, padding}, 2}.bytes()},
      {"XML", "<plist><array>" + repeated(mebibyte / 7, "<true/>") + "</array></plist>"},
      {"XML of texts",
       "<plist><array>" + repeated(mebibyte / 18, "<string>a</string>") + "</array></plist>"},
  };
  for (const auto& [name, list] : lists) {
    const Expense expense = expenseOf([] {},
                                      [bytes = std::as_bytes(std::span(list))] {
                                        static_cast<void>(propertyListWithData(bytes));
                                      });
    EXPECT_TRUE(expense.isDone) << name;
    EXPECT_LE(expense.memory, mebibyte + 200 * list.size()) << name;
  }
}

/// An array of `count` references to one object with `parts` parts.
Data archiveOfReferences(std::size_t count, std::size_t parts, const char* className) {
  Dictionary object;
  object.reserve(parts + 1);
  for (std::size_t i = 0; i < parts; ++i) object.append("key " + std::to_string(i), true);
  object.append("$class", reference(3));
  return archiveOf({Dictionary{{"NS.objects", references(std::vector<std::uint64_t>(count, 2))},
                               {"$class", reference(4)}},
                    Value(std::move(object)), classRecord(className), classRecord("NSArray")});
}

// Each of these looks at 10^10 parts and more, unless what is looked at counts.
TEST(ArchiveAmplificationTest, ArchivesEndSoonOrAreRefused) {
  const Data archives[] = {archiveOfReferences(100'000, 100'000, "NSDate"),
                           archiveOfReferences(100'000, 100'000, "NSDictionary")};
  for (const Data& archive : archives) {
    const Expense expense =
        expenseOf([] {},
                  [&] {
                    Error error;
                    if (NSKeyedUnarchiver::unarchivedObjectOfClasses(
                            {"NSArray", "NSDate", "NSDictionary", "NSURL"}, archive, &error)) {
                      std::abort();
                    }
                  });
    EXPECT_TRUE(expense.isDone) << archive.size();
  }
}

}  // namespace
}  // namespace FrameworkUtility
