#include <framework_utility/errors/error_factory.h>

#include <framework_utility/platform/foundation/app/application.h>
#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <framework_utility/platform/locale/locale.h>
#include <tests/support/is_error.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace FrameworkUtility {
namespace {

using ::testing::HasSubstr;
using testing::IsError;
using ::testing::Not;
using ::testing::StartsWith;

/// A file manager whose volume has 1 TB, of which a photo in the home directory takes 3 KB; it
/// notes what it was asked for last.
class ErrorFactoryTest : public ::testing::Test {
 protected:
  ErrorFactoryTest() {
    const std::string& home = application().homeDirectory;
    EXPECT_TRUE(memory_->createDirectoryAtPath(home, IntermediateDirectories::create, nullptr));
    EXPECT_TRUE(memory_->writeAtomically(std::vector<std::byte>(3072), home + "/photo", nullptr));
    asked_.clear();
  }

  const std::string report_ = "(disk space used 3 KB, free 1,024 GB, total 1 TB)";
  std::string asked_;

 private:
  const ScopedLocale english_{Locale("en_US")};
  const std::unique_ptr<FileManager> memory_ = makeInMemoryFileManager();
  const std::unique_ptr<FileManager> watched_ =
      makeFailingFileManager(*memory_, [this](std::string_view, std::string_view path) {
        asked_ = path;
        return std::optional<Error>();
      });
  const ScopedFileManager scoped_{*watched_};
};

TEST_F(ErrorFactoryTest, FillsOnlyWhatIsGiven) {
  EXPECT_EQ(errorWithDomain(std::nullopt, 7),
            Error("NSTervixActivityViewControllerErrorDomain", 7, Dictionary()));
  const Error cause("Cause", 1);
  EXPECT_EQ(errorWithDomain("Domain", 12, std::nullopt, cause),
            Error("Domain", 12, {{NSUnderlyingErrorKey, cause}}));
  // An empty domain and an empty description are given.
  EXPECT_EQ(errorWithDomain("", -999, ""), Error("", -999, {{NSLocalizedDescriptionKey, ""}}));

  constexpr ErrorCode code{"Domain", 3, "Class: it  faile"};
  EXPECT_THAT(errorWithCode(code), IsError(code));
  const Error detailed = errorWithCode(code, "Class: status 4", cause);
  EXPECT_THAT(detailed, IsError("Domain", 3, "Class: status 4"));
  EXPECT_EQ(detailed.underlyingError(), cause);
}

TEST_F(ErrorFactoryTest, CodesOfTheDiskCarryTheReport) {
  for (const std::int64_t code : {5000, 5001, 5999}) {
    EXPECT_THAT(errorWithDomain("Any", code), IsError("Any", code, report_));
    EXPECT_THAT(errorWithDomain("Any", code, "Lead"), IsError("Any", code, "Lead " + report_));
  }
  for (const std::int64_t code : {4999, 6000, -5000}) {
    EXPECT_TRUE(errorWithDomain("Any", code).userInfo().empty()) << code;
    EXPECT_THAT(errorWithDomain("Any", code, "Lead"), IsError("Any", code, "Lead"));
  }
  EXPECT_THAT(errorWithCode({"Any", 5500, "Full"}), IsError("Any", 5500, "Full " + report_));
}

TEST_F(ErrorFactoryTest, TheReportTellsTheVolumeOfTheHomeDirectoryBehindALeadThatIsNoFormat) {
  for (const std::string lead : {"", "%@ %s %n %1$@", "{} {0}", "100 %"}) {
    EXPECT_EQ(diskSpaceReport(lead), lead + ' ' + report_);
  }
  EXPECT_EQ(diskSpaceReport(), report_);
  EXPECT_EQ(asked_, application().homeDirectory);
}

TEST_F(ErrorFactoryTest, AFullDiskIsDescribedByTheReportOfItsVolume) {
  const std::string words = "No space left on device";
  const Error system(NSPOSIXErrorDomain, 28, {{NSLocalizedDescriptionKey, words}});
  for (const auto& [file, folder] :
       {std::pair{"/tmp/folder/photo", "/tmp/folder"}, {"bare", "."}}) {
    const Dictionary info{{NSFilePathErrorKey, file}, {NSUnderlyingErrorKey, system}};
    const Error full =
        withDiskSpaceReport(Error(NSCocoaErrorDomain, NSFileWriteOutOfSpaceError, info));
    EXPECT_EQ(full.domain(), NSCocoaErrorDomain);
    EXPECT_THAT(full.localizedDescription(), StartsWith(words + " (disk space used "));
    EXPECT_EQ(asked_, folder);
    EXPECT_EQ(full.underlyingError(), system);
  }
  for (const Error& other : {Error(NSCocoaErrorDomain, NSFileNoSuchFileError),
                             Error(NSPOSIXErrorDomain, NSFileWriteOutOfSpaceError)}) {
    EXPECT_EQ(withDiskSpaceReport(other), other);
  }
}

// Beside the volumes of the machine itself.
TEST(DiskSpaceReportTest, OnlyAnUnreadableVolumeHasZeroAmounts) {
  const ScopedLocale english(Locale("en_US"));
  EXPECT_THAT(diskSpaceReport(), Not(HasSubstr("total 0 bytes")));
  EXPECT_EQ(diskSpaceReport(std::nullopt, "/there is no such folder"),
            "(disk space used 0 bytes, free 0 bytes, total 0 bytes)");
}

}  // namespace
}  // namespace FrameworkUtility
