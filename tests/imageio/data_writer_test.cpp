// Data on the disk; what either writer leaves behind when the file system fails, and when two save
// at once.

#include <framework_utility/imageio/data_writer.h>
#include <framework_utility/imageio/image_metadata.h>
#include <framework_utility/imageio/image_writer.h>
#include <framework_utility/platform/foundation/app/temporary_directory.h>
#include <framework_utility/platform/foundation/files/file_error.h>
#include <framework_utility/platform/foundation/files/files.h>
#include <tests/imageio/pictures.h>
#include <tests/support/files.h>
#include <tests/support/is_error.h>
#include <tests/support/small_disk.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <thread>

namespace FrameworkUtility {
namespace {

using namespace testing;
using ::testing::MatchesRegex;

TEST(DataWriterTest, WritesUnderAUuidInAFolderOfItsOwn) {
  const std::string session = temporaryDirectory() + "Data-1/";
  const std::string uuid = "[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}";
  for (const auto& [type, extension] : {std::pair{UTTypePNG, "\\.png"}, {UTTypeData, ""}}) {
    const std::optional<URL> written = writeToDisk(bytesOf("abc"), type, "Data-1");
    ASSERT_TRUE(written);
    const std::string path = written->path().value();
    ASSERT_TRUE(path.starts_with(session)) << path;
    EXPECT_THAT(path.substr(session.size()), MatchesRegex(uuid + "/" + uuid + extension));
    EXPECT_EQ(readFile(path), Data(bytesOf("abc")));
  }
  EXPECT_EQ(namesIn(session).size(), 2u);
}

TEST(DataWriterTest, EveryFailureHasItsErrorAndLeavesNoFile) {
  const auto errorOf = [](const std::optional<UTType>& type, std::string_view identifier) {
    Error error;
    EXPECT_FALSE(writeToDisk(bytesOf("abc"), type, identifier, &error));
    return error;
  };
  EXPECT_THAT(errorOf(std::nullopt, "Data-2"), IsError(NSDataWriteToDiskError::noType));
  EXPECT_FALSE(std::filesystem::exists(temporaryDirectory() + "Data-2"));
  for (const std::string_view identifier : {"", "..", "../Data-2", "a/../../Data-2"}) {
    EXPECT_THAT(errorOf(UTTypePNG, identifier), IsError(NSDataWriteToDiskError::noFolder));
  }
  writeFile(temporaryDirectory() + "Data-3", Data(bytesOf("a file, no folder")));
  EXPECT_THAT(errorOf(UTTypePNG, "Data-3"), IsError(NSDataWriteToDiskError::writeFailed));
}

/// What is in the folder at any depth.
std::vector<std::string> filesIn(const std::string& folder) {
  std::vector<std::string> files;
  if (!std::filesystem::exists(folder)) return files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (!entry.is_directory()) files.push_back(entry.path().string());
  }
  return files;
}

bool isWhole(const std::string& file, std::size_t width) {
  const auto source = CGImageSource::createWithData(readFile(file));
  const std::optional<CGImage> image = source ? source->imageAtIndex(0) : std::nullopt;
  return image && image->width() == width;
}

/// Runs `save`, which gives the path of what it wrote below `folder`, with each of its file
/// operations failing in turn, alone or with all that follow. While the disk lets it be removed,
/// nothing of a save that fails stays, its folders neither.
void expectAllOrNothing(const std::string& folder,
                        const std::function<std::optional<std::string>()>& save,
                        const std::function<bool(const std::string&)>& isWholeFile) {
  for (const bool forGood : {false, true}) {
    bool reached = true;
    for (int failing = 0; reached; ++failing) {
      SCOPED_TRACE(::testing::Message() << "operation " << failing);
      std::filesystem::remove_all(folder);
      int operation = 0;
      const auto manager =
          makeFailingFileManager(FileManager::defaultManager(),
                                 [&](std::string_view, std::string_view) -> std::optional<Error> {
                                   const int number = operation++;
                                   if (number == failing || (forGood && number > failing)) {
                                     return Error("disk", 28);
                                   }
                                   return std::nullopt;
                                 });
      const ScopedFileManager scope(*manager);
      const std::optional<std::string> written = save();
      const std::vector<std::string> left = filesIn(folder);
      EXPECT_TRUE(written ? left == std::vector{*written} : forGood || left.empty());
      for (const std::string& file : left) EXPECT_TRUE(isWholeFile(file));
      EXPECT_TRUE(forGood || std::filesystem::exists(folder) == written.has_value());
      reached = operation > failing;
      ASSERT_LT(failing, 100);
    }
  }
}

TEST(InterruptedWritingTest, AFailingDiskLeavesAWholeFileOrNone) {
  const TemporaryFolder folder;
  const CGImage image = redAndBlue(64, 64);
  expectAllOrNothing(
      folder.path("new"),
      [&] { return writeCGImageToPath(image, folder.path("new/er/a.jpeg"), {.uti = UTTypeJPEG}); },
      [](const std::string& file) { return isWhole(file, 64); });
  const Data bytes(bytesOf("all of these bytes"));
  expectAllOrNothing(
      temporaryDirectory() + "Interrupted-1",
      [&] {
        const auto url = writeToDisk(bytes, UTTypeJPEG, "Interrupted-1");
        return url ? url->path() : std::nullopt;
      },
      [&](const std::string& file) { return readFile(file) == bytes; });
}

/// Both writers tell a full disk as one, with the report of the disk that is full.
TEST(InterruptedWritingTest, AFullDiskIsTheCauseOfWhatFails) {
  const std::string disk = temporaryDirectory();
  const std::optional<bool> held = runOnSmallDisk(disk, [&] {
    const auto expectFull = [&](const ErrorCode& code, const auto& save) {
      writeFile(disk + "rest", Data(std::vector<std::byte>(250'000)));
      Error error;
      EXPECT_FALSE(save(&error));
      EXPECT_THAT(error, IsError(code));
      const Error cause = error.underlyingError().value_or(Error());
      EXPECT_EQ(cause.code(), NSFileWriteOutOfSpaceError);
      EXPECT_THAT(cause.localizedDescription(),
                  ::testing::HasSubstr("No space left on device (disk space used 2"));
    };
    expectFull(CGImageWriteToDiskError::finalizeFailed, [&](Error* error) {
      return writeCGImageToPath(redAndBlue(4000, 500), disk + "new/er/a", {.compressionQuality = 1},
                                error);
    });
    expectFull(NSDataWriteToDiskError::writeFailed, [&](Error* error) {
      return writeToDisk(std::vector<std::byte>(1 << 20), UTTypeJPEG, "Full-1", error);
    });
  });
  if (!held) GTEST_SKIP() << "this system lets nobody mount a small disk";
  EXPECT_TRUE(*held);
}

TEST(InterruptedWritingTest, TwoWhoSaveAtOnceLeaveOneWholeImage) {
  const TemporaryFolder folder;
  const CGImage image = redAndBlue(200, 200);
  const auto save = [&] {
    for (int i = 0; i < 30; ++i) {
      EXPECT_TRUE(writeCGImageToPath(image, folder.path("a"), {.uti = UTTypeJPEG}));
    }
  };
  std::thread first(save), second(save);
  first.join();
  second.join();
  EXPECT_TRUE(isWhole(folder.path("a.jpeg"), 200));
  EXPECT_THAT(namesIn(folder.path()), ::testing::ElementsAre("a.jpeg"));
}

}  // namespace
}  // namespace FrameworkUtility
