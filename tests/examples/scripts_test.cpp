#include <tests/imageio/pictures.h>
#include <tests/support/run_program.h>
#include <tests/support/temporary_folder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace FrameworkUtility {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

/// Scripts in a folder of their own, where there is nothing to install with and nothing to build.
class ScriptsTest : public ::testing::Test {
 protected:
  ScriptsTest() {
    std::filesystem::copy(SCRIPTS, folder_.path("scripts"));
    std::filesystem::copy(SCRIPTS "/../cmake", folder_.path("cmake"));
  }

  testing::ProgramResult run(const std::string& command) const {
    return testing::runProgram("PATH=$PWD/bin:$PATH scripts/" + command, folder_.path());
  }

  void provide(const std::string& program, const std::string& line) const {
    std::filesystem::create_directory(folder_.path("bin"));
    std::ofstream(folder_.path("bin/" + program)) << "#!/bin/sh\n" << line << '\n';
    std::filesystem::permissions(folder_.path("bin/" + program), std::filesystem::perms::owner_all);
  }

  const testing::TemporaryFolder folder_;
};

TEST_F(ScriptsTest, TheDemoLooksAtThePhotoBeforeItInstalls) {
  testing::writeFile(folder_.path("words.jpg"), Data(std::vector(9, std::byte{'a'})));
  std::filesystem::create_directories(folder_.path("build/demo"));
  testing::writeFile(folder_.path("build/demo/after.png"),
                     testing::encoded(testing::redAndBlue(2, 2), "public.png"));
  const std::pair<const char*, const char*> cases[] = {
      {"none.jpg", "none.jpg: there is no such file"},
      {"words.jpg", "words.jpg: neither JPEG nor PNG"},
      {".", ".: that is not a file"},
      {"build/demo/after.png", "after.png: the demo clears this folder"},
      {"--fast", "there is no option --fast"},
      {"words.jpg words.jpg", "one photo at a time"}};
  for (const auto& [arguments, problem] : cases) {
    const auto result = run(std::string("demo.sh ") + arguments);
    EXPECT_EQ(result.exitCode, 2) << arguments;
    EXPECT_THAT(result.problems, StartsWith("demo.sh: "));
    EXPECT_THAT(result.problems, HasSubstr(problem));
  }
  EXPECT_TRUE(std::filesystem::exists(folder_.path("build/demo/after.png")));
  EXPECT_THAT(run("demo.sh --help").output, StartsWith("demo.sh [PHOTO]: "));
}

TEST_F(ScriptsTest, SetupSaysThatItNeedsRootOrSudo) {
  provide("dpkg-query", "exit 1");
  provide("id", "echo 1000");
  const auto result = testing::runProgram("PATH=$PWD/bin /bin/sh scripts/setup.sh", folder_.path());
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.problems, StartsWith("setup.sh: root, or sudo, is needed to install g++ "));
}

TEST_F(ScriptsTest, TheTestsThatWereSkippedAreNamed) {
  provide("dpkg-query", "echo installed");
  provide("cmake", "exit 0");
  provide("ctest",
          "mkdir -p build/release/Testing/Temporary && cp log build/release/Testing/"
          "Temporary/LastTest.log");
  std::ofstream(folder_.path("log")) << "1/2 Testing: a.First\n[       OK ] First\n"
                                        "2/2 Testing: a.Second\n../second_test.cpp:7: Skipped\n"
                                        "the package python3 is not installed\n";
  const auto result = run("test.sh");
  EXPECT_EQ(result.exitCode, 0) << result.problems;
  EXPECT_EQ(result.output, "Skipped a.Second: the package python3 is not installed\n");
}

}  // namespace
}  // namespace FrameworkUtility
