#include <tests/support/run_program.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace FrameworkUtility {
namespace {

TEST(TouchTest, MapsWhatAnswers) {
  const testing::TemporaryFolder folder;
  const auto result = testing::runProgram("'" TOUCH "'", folder.path());
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.problems, "");
  // Above the scrolled list, through the middle of the handle, at the list's lower end.
  EXPECT_THAT(result.output, ::testing::StartsWith("                      ++++++++++++     "));
  EXPECT_THAT(result.output, ::testing::HasSubstr(
                                 "\n    +++#####+++       ############      ############      \n"));
  EXPECT_THAT(result.output, ::testing::HasSubstr(
                                 "\n                      ------------      ############      \n"));
}

}  // namespace
}  // namespace FrameworkUtility
