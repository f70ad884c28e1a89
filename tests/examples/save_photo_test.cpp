#include <tests/imageio/pictures.h>
#include <tests/support/run_program.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace FrameworkUtility {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

TEST(SavePhotoTest, SavesAndCleansUp) {
  const testing::TemporaryFolder folder;
  testing::writeFile(folder.path("photo.jpg"),
                     testing::encoded(testing::redAndBlue(400, 300), "public.jpeg",
                                      Dictionary{{"Orientation", 6},
                                                 {"{TIFF}", Dictionary{{"Model", "Camera One"}}}}));
  const auto result = testing::runProgram("'" SAVE_PHOTO "' photo.jpg", folder.path());
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.problems, "");
  EXPECT_THAT(result.output, MatchesRegex("Camera One, 300 pixels wide\n"
                                          "taken upright\n"
                                          "saved as file:///.*/Editor-1/.*/photo.jpeg\n"
                                          "thumbnail 256 pixels wide\n"));
  const std::string path = result.output.substr(result.output.find("file://") + 7);
  EXPECT_FALSE(std::filesystem::exists(path.substr(0, path.find('\n'))));

  const auto missing = testing::runProgram("'" SAVE_PHOTO "' none.jpg", folder.path());
  EXPECT_NE(missing.exitCode, 0);
  EXPECT_THAT(missing.problems, HasSubstr("Which photo?"));
}

}  // namespace
}  // namespace FrameworkUtility
