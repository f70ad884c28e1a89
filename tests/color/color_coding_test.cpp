#include <framework_utility/color/color.h>
#include <framework_utility/errors/archive_error.h>
#include <framework_utility/platform/foundation/archives/coder_error.h>
#include <framework_utility/platform/foundation/archives/keyed_archiver.h>

#include <tests/support/archives.h>
#include <tests/support/files.h>
#include <tests/support/is_error.h>
#include <tests/support/run_program.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <optional>
#include <span>
#include <string>

namespace FrameworkUtility {
namespace {

using testing::archiveOf;
using testing::archiveOfObject;
using testing::bytesOf;
using testing::classRecord;
using testing::IsError;
using testing::reference;

constexpr const char* qualified = "FrameworkUtility.KvColor";

std::optional<KvColor> decoded(const Dictionary& parts, const std::string& className = qualified) {
  return KvColor::unarchivedData(archiveOfObject(parts, className));
}

void expectIs(const std::optional<KvColor>& color, double red, double green, double blue,
              double alpha) {
  ASSERT_TRUE(color);
  EXPECT_EQ(color->red, red);
  EXPECT_EQ(color->green, green);
  EXPECT_EQ(color->blue, blue);
  EXPECT_EQ(color->alpha, alpha);
}

TEST(ColorCodingTest, WritesFourFloats) {
  const std::optional<Data> data = KvColor(0.1, 0.25, 1, 0.75).archivedData();
  ASSERT_TRUE(data);
  const auto list = propertyListWithData(*data);
  ASSERT_TRUE(list && list->as<Dictionary>());
  const auto* objects = list->as<Dictionary>()->get<Array>("$objects");
  ASSERT_TRUE(objects);
  ASSERT_EQ(objects->size(), 3);
  const auto* color = objects->at(1).as<Dictionary>();
  ASSERT_TRUE(color);
  EXPECT_EQ(color->size(), 5) << "variants are not archived";
  for (const auto& [key, value] : {std::pair{"R", 0.1F}, {"G", 0.25F}, {"B", 1.0F}, {"A", 0.75F}}) {
    const auto* number = color->get<Number>(key);
    ASSERT_TRUE(number) << key;
    EXPECT_TRUE(number->isSinglePrecision()) << key;
    EXPECT_EQ(*number, Number(value)) << key;
  }
  EXPECT_EQ(objects->at(2), classRecord(qualified));
}

TEST(ColorCodingTest, ComesBackInSinglePrecisionAndWithoutVariants) {
  const auto again = [](const KvColor& color) {
    return KvColor::unarchivedData(color.archivedData());
  };
  int changed = 0;
  for (int i = 0; i <= 100; ++i) {
    const double component = i / 100.0;
    const auto read = again(KvColor(component, 0, 0));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->red, static_cast<double>(static_cast<float>(component)));
    if (*read != KvColor(component, 0, 0)) ++changed;
  }
  EXPECT_EQ(changed, 47) << "of the hundredths; it is meant";
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
  expectIs(decoded(rgb), 0.5, 0.25, 2, 1);
  // The class's name with its module, without it, and mangled.
  for (const char* name : {"KvColor", "_TtC16FrameworkUtility7KvColor"}) {
    expectIs(decoded(rgb, name), 0.5, 0.25, 2, 1);
  }
  expectIs(decoded({{"R", 0.5}, {"G", 0.1}, {"B", 1.0}, {"A", -0.25}}), 0.5, 0.1F, 1, -0.25);

  const Dictionary hsl{{"H", 0.0F}, {"S", 1.0F}, {"L", 0.5F}};
  expectIs(decoded(hsl), 1, 0, 0, 1);
  // Red, green and blue win; one of them alone counts for nothing.
  const auto joined = [](Dictionary a, const Dictionary& b) {
    for (const auto& [key, value] : b) a.set(key, value);
    return a;
  };
  expectIs(decoded(joined(hsl, rgb)), 0.5, 0.25, 2, 1);
  expectIs(decoded(joined(hsl, {{"G", 0.25F}, {"B", 0.5F}, {"A", 0.5F}})), 1, 0, 0, 0.5);
}

TEST(ColorCodingTest, FailuresHaveTheirCodes) {
  struct Case {
    const char* name;
    std::optional<Data> data;
    ErrorCode expected;
    std::optional<ErrorCode> cause;
  };
  const Dictionary rgb{{"R", 0.5F}, {"G", 0.25F}, {"B", 0.0F}};
  const auto failed = ArchiveError::unarchivingFailed;
  const auto corrupt = CoderError::readCorrupt;
  for (const Case& c : {
           Case{"no data", std::nullopt, ArchiveError::dataIsNil, std::nullopt},
           Case{"empty", Data(), failed, corrupt},
           Case{"no archive", *dataWithPropertyList(rgb), failed, corrupt},
           Case{"another class", archiveOfObject(rgb, "NSURL"), failed, corrupt},
           Case{"an unknown class", archiveOfObject(rgb, "Sketch.Stroke"), failed, corrupt},
           Case{"a text", archiveOf({"red"}), failed, corrupt},
           Case{"the root is past the end", archiveOf({}), failed, corrupt},
           Case{"an integer", archiveOfObject({{"R", 1}, {"G", 0.25F}, {"B", 0.5F}}, qualified),
                failed, corrupt},
           Case{"a text as red",
                archiveOfObject({{"R", "1"}, {"G", 0.25F}, {"B", 0.5F}}, qualified), failed,
                corrupt},
           Case{"red is an object",
                archiveOfObject({{"R", reference(1)}, {"G", 0.25F}, {"B", 0.5F}}, qualified),
                failed, corrupt},
           Case{"red is too large for single precision",
                archiveOfObject({{"R", 1e300}, {"G", 0.25F}, {"B", 0.5F}}, qualified), failed,
                corrupt},
           Case{"a number, which is allowed", archiveOf({5}), ArchiveError::colorIsNil,
                std::nullopt},
           Case{"no components", archiveOfObject({{"A", 1.0F}}, qualified),
                ArchiveError::colorIsNil, std::nullopt},
           Case{"two of three, twice",
                archiveOfObject({{"R", 1.0F}, {"G", 1.0F}, {"H", 1.0F}, {"L", 1.0F}}, qualified),
                ArchiveError::colorIsNil, std::nullopt},
       }) {
    SCOPED_TRACE(c.name);
    Error error;
    EXPECT_FALSE(KvColor::unarchivedData(c.data, &error));
    EXPECT_THAT(error, IsError(c.expected));
    const std::optional<Error> cause = error.underlyingError();
    EXPECT_EQ(cause.has_value(), c.cause.has_value());
    EXPECT_TRUE(!cause || !c.cause || cause->is(*c.cause));
  }
}

TEST(ColorCodingTest, PythonReadsWhatIsWrittenAndWritesWhatIsRead) {
  if (std::system("python3 -c 'import plistlib' 2>/dev/null") != 0) {
    GTEST_SKIP() << "the package python3 is not installed";
  }
  const testing::TemporaryFolder folder;
  FileManager& files = FileManager::defaultManager();
  const auto write = [&](const char* name, std::span<const std::byte> bytes) {
    ASSERT_TRUE(files.writeAtomically(bytes, folder.path(name), nullptr));
  };
  write("ours", *KvColor(0.1, 0.25, 1, 0.75).archivedData());
  write("check.py", bytesOf(R"(import plistlib, struct
from plistlib import UID
archive = plistlib.load(open('ours', 'rb'), fmt=plistlib.FMT_BINARY)
single = lambda number: struct.unpack('f', struct.pack('f', number))[0]
name = 'FrameworkUtility.KvColor'
assert archive == {'$version': 100000, '$archiver': 'NSKeyedArchiver', '$top': {'root': UID(1)},
  '$objects': ['$null',
    {'R': single(0.1), 'G': 0.25, 'B': 1.0, 'A': 0.75, '$class': UID(2)},
    {'$classname': name, '$classes': [name, 'NSObject']}]}, archive
archive['$objects'][1] = {'H': 0.0, 'S': 1.0, 'L': 0.5, 'A': 0.5, '$class': UID(2)}
plistlib.dump(archive, open('binary', 'wb'), fmt=plistlib.FMT_BINARY)
# Which has no references in XML, where the platform writes them so.
def in_xml(value):
  if isinstance(value, UID): return {'CF$UID': value.data}
  if isinstance(value, list): return [in_xml(element) for element in value]
  if isinstance(value, dict): return {key: in_xml(value[key]) for key in value}
  return value
plistlib.dump(in_xml(archive), open('xml', 'wb'), fmt=plistlib.FMT_XML)
)"));
  const auto result = testing::runProgram("python3 check.py", folder.path());
  ASSERT_EQ(result.exitCode, 0) << result.problems;
  for (const char* name : {"binary", "xml"}) {
    SCOPED_TRACE(name);
    const auto archive = testing::contentsOf(files, folder.path(name));
    ASSERT_TRUE(archive);
    expectIs(KvColor::unarchivedData(Data(bytesOf(*archive))), 1, 0, 0, 0.5);
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

}  // namespace
}  // namespace FrameworkUtility
