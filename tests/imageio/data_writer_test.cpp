#include <framework_utility/imageio/data_writer.h>

#include <framework_utility/platform/foundation/files/files.h>
#include <tests/imageio/pictures.h>
#include <tests/support/is_error.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace FrameworkUtility {
namespace {

using testing::IsError;
using ::testing::MatchesRegex;

const std::string hex = "[0-9A-F]";
const std::string uuid = hex + "{8}-" + hex + "{4}-" + hex + "{4}-" + hex + "{4}-" + hex + "{12}";

std::span<const std::byte> bytes(std::string_view text) { return std::as_bytes(std::span(text)); }

TEST(DataWriterTest, WritesUnderAUuidInAFolderOfItsOwn) {
  const std::string session = temporaryDirectory() + "Data-1/";
  for (const auto& [type, extension] : {std::pair{UTTypePNG, "\\.png"}, {UTTypeData, ""}}) {
    const std::optional<URL> written = writeToDisk(bytes("abc"), type, "Data-1");
    ASSERT_TRUE(written);
    const std::string path = written->path().value();
    ASSERT_TRUE(path.starts_with(session)) << path;
    EXPECT_THAT(path.substr(session.size()), MatchesRegex(uuid + "/" + uuid + extension));
    EXPECT_EQ(testing::readFile(path), Data(bytes("abc")));
  }
  EXPECT_EQ(testing::namesIn(session).size(), 2u);
}

TEST(DataWriterTest, EveryFailureHasItsErrorAndLeavesNoFile) {
  Error error;
  EXPECT_FALSE(writeToDisk(bytes("abc"), std::nullopt, "Data-2", &error));
  EXPECT_THAT(error, IsError(NSDataWriteToDiskError::noType));
  EXPECT_FALSE(std::filesystem::exists(temporaryDirectory() + "Data-2"));

  for (const std::string_view identifier : {"", "..", "../Data-2", "a/../../Data-2"}) {
    SCOPED_TRACE(identifier);
    EXPECT_FALSE(writeToDisk(bytes("abc"), UTTypePNG, identifier, &error));
    EXPECT_THAT(error, IsError(NSDataWriteToDiskError::noFolder));
  }

  testing::writeFile(temporaryDirectory() + "Data-3", Data(bytes("a file, no folder")));
  EXPECT_FALSE(writeToDisk(bytes("abc"), UTTypePNG, "Data-3", &error));
  EXPECT_THAT(error, IsError(NSDataWriteToDiskError::writeFailed));
}

}  // namespace
}  // namespace FrameworkUtility
