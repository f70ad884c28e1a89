#include <framework_utility/platform/foundation/files/files.h>
#include <tests/support/files.h>
#include <tests/support/run_program.h>
#include <tests/support/temporary_folder.h>

#include <gtest/gtest.h>

#include <string>

namespace FrameworkUtility {
namespace {

TEST(SvgTest, TheDocumentationShowsWhatTheExamplesDraw) {
  const FileManager& files = FileManager::defaultManager();
  const testing::TemporaryFolder folder;
  const std::pair<std::string, std::string> examples[] = {{COLLAGE, "collage.svg"},
                                                          {STRAIGHTEN, "straighten.svg"}};
  for (const auto& [program, name] : examples) {
    SCOPED_TRACE(name);
    const auto result = testing::runProgram("'" + program + "' " + name, folder.path());
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.output + result.problems, "");
    const auto drawn = testing::contentsOf(files, folder.path(name));
    ASSERT_TRUE(drawn);
    EXPECT_EQ(drawn, testing::contentsOf(files, DOCS "/images/" + name));
    EXPECT_EQ(testing::runProgram("'" + program + "' no/folder.svg", folder.path()).exitCode, 1);
  }
}

}  // namespace
}  // namespace FrameworkUtility
