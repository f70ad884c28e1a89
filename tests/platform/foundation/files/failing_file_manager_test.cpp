#include <framework_utility/platform/foundation/files/files.h>
#include <framework_utility/platform/foundation/values/value.h>
#include <tests/support/files.h>
#include <tests/support/is_error.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>

namespace FrameworkUtility {
namespace {

using testing::bytesOf;
using testing::IsError;

// Every operation of a file manager once; the names of those that went well.
std::vector<std::string> allOperations(FileManager& files, Error* error) {
  std::vector<std::string> done;
  const auto note = [&](const char* name, bool went) {
    if (went) done.emplace_back(name);
  };
  const auto folders = IntermediateDirectories::create;
  std::array<std::byte, 4> bytes{};
  note("createDirectoryAtPath", files.createDirectoryAtPath("/d", folders, error));
  note("writeAtomically", files.writeAtomically(bytesOf("text"), "/f", error));
  note("attributesOfItemAtPath", files.attributesOfItemAtPath("/f", error).has_value());
  note("attributesOfFileSystemForPath",
       files.attributesOfFileSystemForPath("/f", error).has_value());
  note("contentsOfDirectoryAtPath", files.contentsOfDirectoryAtPath("/", error).has_value());
  const auto reader = files.openFileAtPath("/f", error);
  note("openFileAtPath", reader != nullptr);
  note("readAt", reader && reader->readAt(0, bytes, error) == 4);
  note("flushDirectoryAtPath", files.flushDirectoryAtPath("/d", error));
  note("copyItemAtPath", files.copyItemAtPath("/f", "/g", error));
  note("moveItemAtPath", files.moveItemAtPath("/f", "/h", error));
  note("removeItemAtPath", files.removeItemAtPath("/h", error));
  note("removeEmptyDirectoryAtPath", files.removeEmptyDirectoryAtPath("/d", error));
  return done;
}

TEST(FailingFileManagerTest, EachCallCanFailAndTheInnerManagerNeverHearsOfIt) {
  const auto memory = makeInMemoryFileManager();
  const std::vector<std::string> operations = allOperations(*memory, nullptr);
  ASSERT_EQ(operations.size(), 12u);

  for (const std::string& failing : operations) {
    SCOPED_TRACE(failing);
    const auto inner = makeInMemoryFileManager();
    const auto files = makeFailingFileManager(
        *inner, [&](std::string_view operation, std::string_view path) -> std::optional<Error> {
          EXPECT_TRUE(path.starts_with("/")) << path;
          if (operation != failing) return std::nullopt;
          return Error("Test", 7, {{NSLocalizedDescriptionKey, "no"}});
        });
    Error error;
    const std::vector<std::string> done = allOperations(*files, &error);
    EXPECT_THAT(done, ::testing::Not(::testing::Contains(failing)));
    EXPECT_EQ(inner->directoryExistsAtPath("/d"), failing == "removeEmptyDirectoryAtPath");
    EXPECT_EQ(inner->fileExistsAtPath("/h"), failing == "removeItemAtPath");
    EXPECT_EQ(inner->fileExistsAtPath("/f"), failing == "moveItemAtPath");

    // Alone and without an error to fill.
    EXPECT_THAT(allOperations(*files, nullptr), ::testing::Not(::testing::Contains(failing)));
  }
}

TEST(FailingFileManagerTest, GivesTheErrorThatTheFunctionGave) {
  const auto inner = makeInMemoryFileManager();
  const auto files = makeFailingFileManager(*inner, [](auto, auto) {
    return Error("Test", 7, {{NSLocalizedDescriptionKey, "no"}});
  });
  Error error;
  EXPECT_FALSE(files->writeAtomically({}, "/f", &error));
  EXPECT_THAT(error, IsError("Test", 7, "no"));
  EXPECT_FALSE(files->fileExistsAtPath("/f"));
}

TEST(ScopedFileManagerTest, PutsAManagerInTheDefaultOnesPlaceAndNests) {
  FileManager& system = FileManager::defaultManager();
  const auto outer = makeInMemoryFileManager(), inner = makeInMemoryFileManager();
  {
    const ScopedFileManager first(*outer);
    EXPECT_EQ(&FileManager::defaultManager(), outer.get());
    {
      const ScopedFileManager second(*inner);
      EXPECT_EQ(&FileManager::defaultManager(), inner.get());
    }
    EXPECT_EQ(&FileManager::defaultManager(), outer.get());
  }
  EXPECT_EQ(&FileManager::defaultManager(), &system);
}

}  // namespace
}  // namespace FrameworkUtility
