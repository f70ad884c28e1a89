#include <framework_utility/errors/error_factory.h>

#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/locale/locale.h>
#include <tests/support/is_error.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace FrameworkUtility {
namespace {

using ::testing::HasSubstr;
using testing::IsError;
using ::testing::MatchesRegex;
using ::testing::Not;

constexpr const char* anAmount = "-?[0-9,.]+ (bytes?|[KMGTPE]B)";

std::string reportPattern(const std::string& lead = "") {
  return lead + R"(\(disk space used )" + anAmount + ", free " + anAmount + ", total " + anAmount +
         R"(\))";
}

TEST(ErrorFactoryTest, FillsOnlyWhatIsGiven) {
  const Error bare = errorWithDomain(std::nullopt, 7);
  EXPECT_EQ(bare.domain(), "NSTervixActivityViewControllerErrorDomain");
  EXPECT_EQ(bare.code(), 7);
  EXPECT_TRUE(bare.userInfo().empty());

  const Error cause("Cause", 1);
  const Error caused = errorWithDomain("Domain", 12, std::nullopt, cause);
  EXPECT_EQ(caused.userInfo(), (Dictionary{{NSUnderlyingErrorKey, cause}}));
  EXPECT_EQ(caused.underlyingError(), cause);

  // An empty domain and an empty description are given.
  const Error empty = errorWithDomain("", -999, "");
  EXPECT_EQ(empty.domain(), "");
  EXPECT_EQ(empty.userInfo(), (Dictionary{{NSLocalizedDescriptionKey, ""}}));
}

TEST(ErrorFactoryTest, MakesDocumentedFailures) {
  constexpr ErrorCode code{"Domain", 3, "Class: it  faile"};
  EXPECT_THAT(errorWithCode(code), IsError(code));
  EXPECT_THAT(errorWithCode(code, "Class: status 4", Error("Cause", 1)),
              IsError("Domain", 3, "Class: status 4"));
}

TEST(ErrorFactoryTest, CodesOfTheDiskCarryTheReport) {
  const ScopedLocale english(Locale("en_US"));
  for (const std::int64_t code : {5000, 5001, 5999}) {
    const Error bare = errorWithDomain("Any", code);
    EXPECT_EQ(bare.code(), code);
    EXPECT_THAT(bare.localizedDescription(), MatchesRegex(reportPattern()));
    EXPECT_THAT(errorWithDomain("Any", code, "Lead").localizedDescription(),
                MatchesRegex(reportPattern("Lead ")));
  }
  for (const std::int64_t code : {4999, 6000, -5000}) {
    EXPECT_TRUE(errorWithDomain("Any", code).userInfo().empty()) << code;
    EXPECT_THAT(errorWithDomain("Any", code, "Lead"), IsError("Any", code, "Lead"));
  }
  EXPECT_THAT(errorWithCode({"Any", 5500, "Full"}).localizedDescription(),
              MatchesRegex(reportPattern("Full ")));
}

TEST(DiskSpaceReportTest, TheLeadIsNoFormat) {
  const ScopedLocale english(Locale("en_US"));
  const auto report = [](std::string_view lead) {
    return diskSpaceReport(lead).substr(0, lead.size() + 12);
  };
  for (const char* lead : {"", "%@ %s %n %1$@", "{} {0}", "100 %"}) {
    EXPECT_EQ(report(lead), std::string(lead) + " (disk space");
  }
  EXPECT_THAT(diskSpaceReport(), MatchesRegex(reportPattern()));
}

TEST(DiskSpaceReportTest, AnUnreadableVolumeHasZeroAmounts) {
  const ScopedLocale english(Locale("en_US"));
  const auto failing = makeFailingFileManager(
      FileManager::defaultManager(),
      [](std::string_view, std::string_view) { return std::optional(Error("Test", 1)); });
  const ScopedFileManager scoped(*failing);
  EXPECT_EQ(diskSpaceReport("Lead"), "Lead (disk space used 0 bytes, free 0 bytes, total 0 bytes)");
}

TEST(DiskSpaceReportTest, TellsTheVolumeOfTheHomeDirectory) {
  const ScopedLocale english(Locale("en_US"));
  EXPECT_THAT(diskSpaceReport(), Not(HasSubstr("total 0 bytes")));

  const auto memory = makeInMemoryFileManager();
  std::string asked;
  const auto watched =
      makeFailingFileManager(*memory, [&](std::string_view, std::string_view path) {
        asked = path;
        return std::optional<Error>();
      });
  const ScopedFileManager scoped(*watched);
  const std::string& home = application().homeDirectory;
  ASSERT_TRUE(memory->createDirectoryAtPath(home, IntermediateDirectories::create, nullptr));
  ASSERT_TRUE(memory->writeAtomically(std::vector<std::byte>(3072), home + "/photo", nullptr));
  EXPECT_EQ(diskSpaceReport(), "(disk space used 3 KB, free 1,024 GB, total 1 TB)");
  EXPECT_EQ(asked, home);
}

}  // namespace
}  // namespace FrameworkUtility
