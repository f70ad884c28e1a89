#include <framework_utility/imageio/data_writer.h>

#include <framework_utility/platform/foundation/app/temporary_directory.h>
#include <tests/imageio/pictures.h>
#include <tests/support/files.h>
#include <tests/support/is_error.h>

#include <gmock/gmock.h>

#include <filesystem>

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

}  // namespace
}  // namespace FrameworkUtility
