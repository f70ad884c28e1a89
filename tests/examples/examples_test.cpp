#include <framework_utility/platform/foundation/files/files.h>
#include <tests/imageio/pictures.h>
#include <tests/support/files.h>
#include <tests/support/run_program.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

namespace FrameworkUtility {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

class ExamplesTest : public ::testing::Test {
 protected:
  testing::ProgramResult run(const std::string& program, const std::string& argument = "") const {
    return testing::runProgram("'" + program + "' " + argument, folder_.path());
  }

  /// What an example that succeeds prints.
  std::string output(const std::string& program, const std::string& argument = "") const {
    const auto result = run(program, argument);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.problems, "");
    return result.output;
  }

  const testing::TemporaryFolder folder_;
};

TEST_F(ExamplesTest, APhotoIsSavedAndCleanedUp) {
  testing::writeFile(folder_.path("photo.jpg"),
                     testing::encoded(testing::redAndBlue(400, 300), "public.jpeg",
                                      Dictionary{{"Orientation", 6},
                                                 {"{TIFF}", Dictionary{{"Model", "Camera One"}}}}));
  const std::string lines = output(SAVE_PHOTO, "photo.jpg");
  EXPECT_THAT(lines, MatchesRegex("Camera One, 300 pixels wide\n"
                                  "taken upright\n"
                                  "saved as file:///.*/Editor-1/.*/photo.jpeg\n"
                                  "thumbnail 256 pixels wide\n"));
  const std::string path = lines.substr(lines.find("file://") + 7);
  EXPECT_FALSE(std::filesystem::exists(path.substr(0, path.find('\n'))));

  const auto missing = run(SAVE_PHOTO, "none.jpg");
  EXPECT_NE(missing.exitCode, 0);
  EXPECT_THAT(missing.problems, HasSubstr("Which photo?"));
}

TEST_F(ExamplesTest, TheDocumentationShowsWhatTheExamplesDraw) {
  const FileManager& files = FileManager::defaultManager();
  for (const auto& [program, name] : {std::pair<std::string, std::string>{COLLAGE, "collage.svg"},
                                      {STRAIGHTEN, "straighten.svg"}}) {
    EXPECT_EQ(output(program, name), "");
    const auto drawn = testing::contentsOf(files, folder_.path(name));
    ASSERT_TRUE(drawn) << name;
    EXPECT_EQ(drawn, testing::contentsOf(files, DOCS "/images/" + name));
    EXPECT_EQ(run(program, "no/folder.svg").exitCode, 1) << name;
  }
}

TEST_F(ExamplesTest, TouchMapsWhatAnswers) {
  const std::string map = output(TOUCH);
  // Above the scrolled list, through the middle of the handle, at the list's lower end.
  EXPECT_THAT(map, StartsWith("                      ++++++++++++     "));
  EXPECT_THAT(map, HasSubstr("\n    +++#####+++       ############      ############      \n"));
  EXPECT_THAT(map, HasSubstr("\n                      ------------      ############      \n"));
}

}  // namespace
}  // namespace FrameworkUtility
